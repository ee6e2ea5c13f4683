#pragma once

#include <QDialog>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/linux/ScopeGrant.h"
#include "platform/linux/panel/PanelBrowser.h"
#include "platform/linux/panel/PanelRules.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace tavrin {

/// What a panel is set to before it is shown.
struct PanelOptions {
  PanelRules rules;
  bool allowsMultipleSelection = false;
  HiddenFiles hiddenFiles = HiddenFiles::LeaveOut;
  QString title;
  QString message;
  QString accessoryText;
  QString prompt;
  /// The folder to show, or the file to show selected in its parent; the home folder without one.
  std::optional<FileURL> directory;
};

/// An item that was picked in a panel.
struct PickedItem {
  FileURL url;
  /// The item itself, as the panel has shown it.
  std::shared_ptr<const ScopeGrant> item;
};

/// The window of a panel. It ends accepted with something picked that the rules allow, or rejected
/// with nothing. What was replaced while the panel showed it is not picked: the list is read anew.
///
/// Keys: Return goes into the selected folder, picks the selected file, and with nothing selected
/// picks the folder shown; Alt+Up goes to the parent; "/" and "~" begin a typed path; Escape
/// cancels.
class OpenPanelDialog final : public QDialog {
 public:
  OpenPanelDialog(const PanelOptions& options, QWidget* parent);

  /// What was picked, once the dialog is accepted.
  const std::vector<PickedItem>& picked() const { return picked_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addTexts(QVBoxLayout& layout);
  void makeLocationRow(QVBoxLayout& layout);
  void makeButtons(QVBoxLayout& layout);
  void showStart();

  void beginTypedPath(const QString& text);
  void folderShown();
  void confirm();
  void refuse(const FileURL& url);
  void locationReturnPressed();
  void selectionChanged();
  void locationEdited();
  void showCandidates();

  /// What confirming would pick: the typed path, the selected rows, or the folder shown.
  std::vector<FileURL> candidates() const;
  std::optional<FileURL> typedURL() const;
  QString problemOfTypedPath() const;

  PanelOptions options_;
  std::vector<PickedItem> picked_;
  /// The location shows what the user typed, and not what the list selects.
  bool locationIsTyped_ = false;
  PanelBrowser* browser_;
  QLineEdit* locationEdit_;
  QLabel* problemLabel_;
  QPushButton* promptButton_ = nullptr;
};

}  // namespace tavrin
