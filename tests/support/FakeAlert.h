#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Alert.h"

namespace tavrin {

/// How an alert was set up when it was shown.
struct ShownAlert {
  Alert::Style style = Alert::Style::Warning;
  std::string messageText;
  std::string informativeText;
  std::vector<std::string> buttons;
  std::string icon;
  bool isSheet = false;
  Window* window = nullptr;
};

/// Makes alerts that are answered as soon as they are shown.
class FakeAlerts final : public AlertProvider {
 public:
  std::unique_ptr<Alert> alert() override { return std::make_unique<Answered>(*this); }

  /// The indexes of the buttons that the user presses, one an alert. Without one the last button of
  /// the alert is pressed.
  std::deque<int> answers;
  /// What happens while an alert is up.
  std::function<void()> whileShown;
  /// Every alert that was shown, in order.
  std::vector<ShownAlert> shown;

 private:
  class Answered final : public Alert {
   public:
    explicit Answered(FakeAlerts& alerts) : alerts_(alerts) {}

    void setAlertStyle(Style style) override { setup_.style = style; }
    void setMessageText(const std::string& text) override { setup_.messageText = text; }
    void setInformativeText(const std::string& text) override { setup_.informativeText = text; }
    void setIconWithContentsOfFile(const std::string& path) override { setup_.icon = path; }
    void addButtonWithTitle(const std::string& title) override { setup_.buttons.push_back(title); }

    int runModal() override { return alerts_.answer(setup_); }

    int runModalAsSheet(Window* window) override {
      setup_.isSheet = true;
      setup_.window = window;
      return alerts_.answer(setup_);
    }

   private:
    FakeAlerts& alerts_;
    ShownAlert setup_;
  };

  int answer(const ShownAlert& alert) {
    shown.push_back(alert);
    if (whileShown) whileShown();
    int button = static_cast<int>(alert.buttons.size()) - 1;
    if (!answers.empty()) {
      button = answers.front();
      answers.pop_front();
    }
    return Alert::firstButtonReturn + button;
  }
};

}  // namespace tavrin
