#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/SavePanel.h"

namespace tavrin {

/// How a save panel was set up when it was shown, and as it is afterwards.
struct SavePanelSettings {
  int level = 0;
  std::optional<bool> allowsOtherFileTypes;
  std::string title;
  std::string name;
  std::optional<FileURL> directory;
  std::vector<std::string> allowedFileTypes;
  /// The allowed types at each validateVisibleColumns, in order.
  std::vector<std::vector<std::string>> validated;
  std::optional<PopUpAccessory> accessory;
};

/// Save panels that a played user answers.
class FakeSavePanels {
 public:
  enum class Replace { No, Yes };
  struct Pick {
    std::string path;
    Replace replace = Replace::No;
  };
  /// What the user does with the panel, which may go through its pop-up; nothing cancels.
  using User = std::function<std::optional<Pick>(const SavePanelSettings& settings)>;

  std::shared_ptr<SavePanel> make();

  /// Answers each panel in turn; without one the panel is cancelled.
  void answerWith(User user) { users_.push_back(std::move(user)); }
  void answerWithPick(Pick pick);

  /// Every panel that was shown, in order, as it is now.
  std::vector<std::shared_ptr<SavePanelSettings>> shown;
  /// What is told of a picked path (it grants the place).
  std::function<void(const std::string& path)> grantPlace;

 private:
  class Panel;
  std::optional<Pick> answer(const std::shared_ptr<SavePanelSettings>& settings);

  std::deque<User> users_;
};

}  // namespace tavrin
