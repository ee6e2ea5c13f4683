#pragma once

#include <QDialog>
#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/SavePanel.h"
#include "platform/linux/StartedScopes.h"
#include "platform/linux/panel/PanelBrowser.h"
#include "platform/linux/panel/SaveName.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace tavrin {

/// What a save panel is set to before it is shown.
struct SavePanelOptions {
  bool isAboveOthers = false;
  QString title;
  std::string name;
  std::vector<std::string> types;
  SaveName::OtherTypes otherTypes = SaveName::OtherTypes::Refused;
  /// The folder to show; the home folder without one.
  std::optional<FileURL> directory;
  std::optional<PopUpAccessory> accessory;
};

/// A place that was picked in a save panel.
struct PickedDestination {
  FileURL url;
  /// The folder as the panel has shown it, and the name in it.
  PickedPlace place;
  /// The user has agreed to replace what has the name.
  bool replaces = false;
};

/// The window of a save panel. It ends accepted with a place for a file, or rejected with none.
///
/// Keys: Return in the name confirms, in the list goes into the selected folder or confirms the
/// selected file's name; Alt+Up goes to the parent; Escape cancels.
class SavePanelDialog final : public QDialog {
 public:
  explicit SavePanelDialog(const SavePanelOptions& options);

  /// What was picked; nothing before the dialog is accepted.
  const std::optional<PickedDestination>& picked() const { return picked_; }

  /// Gives the name the extension of other types than before.
  void setTypes(const std::vector<std::string>& types, SaveName::OtherTypes otherTypes);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void makeNameRow(QVBoxLayout& layout);
  void makeAccessory(QVBoxLayout& layout, const PopUpAccessory& accessory);
  void makeButtons(QVBoxLayout& layout);
  void showStart(const std::optional<FileURL>& directory);

  /// Shows a name that is `bytes`, with all selected but its type.
  void showName(const std::string& bytes);
  void selectionChanged();
  void nameEdited();
  void showState();
  void confirm();
  bool agreesToReplace(const std::string& name);

  /// The name as it stands in the field.
  std::string nameInField() const;
  QString problemOf(const std::string& name) const;
  bool isFolderInFolderShown(const std::string& name) const;

  SaveName rules_;
  std::optional<PickedDestination> picked_;
  /// The bytes of the name in the field, as long as the user has not edited it.
  std::optional<std::string> shownName_;
  QLineEdit* nameEdit_;
  PanelBrowser* browser_;
  QLabel* hintLabel_;
  QPushButton* saveButton_ = nullptr;
};

}  // namespace tavrin
