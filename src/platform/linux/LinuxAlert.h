#pragma once

#include <QString>
#include <vector>

#include "platform/Alert.h"

class QWidget;

namespace tavrin {

/// A message box. Without a message text the informative text takes its place, in plain weight.
class LinuxAlert final : public Alert {
 public:
  void setAlertStyle(Style style) override { style_ = style; }
  void setMessageText(const std::string& text) override;
  void setInformativeText(const std::string& text) override;
  void setIconWithContentsOfFile(const std::string& path) override;
  void addButtonWithTitle(const std::string& title) override;
  int runModal() override;
  int runModalAsSheet(Window* window) override;

 private:
  int run(QWidget* parent);
  std::size_t escapeButtonIndex() const;

  Style style_ = Style::Warning;
  QString messageText_;
  QString informativeText_;
  QString iconFile_;
  std::vector<QString> buttonTitles_;
};

class LinuxAlertProvider final : public AlertProvider {
 public:
  std::unique_ptr<Alert> alert() override;
};

}  // namespace tavrin
