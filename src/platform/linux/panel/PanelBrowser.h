#pragma once

#include <QTreeView>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "platform/linux/panel/FolderListModel.h"
#include "platform/linux/panel/PanelRules.h"

class QLabel;
class QListWidget;

namespace tavrin {

class PanelPathBar;

/// The part of a panel in which the user goes through folders: the way to the folder shown, the
/// places, and the folder's list. Return in the list goes into the selected folder, Alt+Up to the
/// parent, and "/" and "~" begin a typed path.
class PanelBrowser final : public QWidget {
 public:
  /// What a panel does when something happens in its browser; each may be empty.
  struct Events {
    /// Another folder is shown, or the same anew.
    std::function<void()> folderShown;
    std::function<void()> selectionChanged;
    /// A double click or Return on what is no folder, Return with no row or several selected.
    std::function<void()> confirmed;
    /// A key that begins a typed path was pressed in the list.
    std::function<void(const QString& text)> pathBegun;
  };

  PanelBrowser(const PanelRules& rules, HiddenFiles hiddenFiles, bool allowsMultipleSelection,
               Events events, QWidget* parent);

  FolderListModel& model() const { return *model_; }
  const FileURL& folder() const { return model_->folder(); }
  /// The enabled rows that are selected, in order.
  std::vector<int> selectedRows() const;

  /// Shows a folder. `nameToShow`, if not empty, is listed even when it is hidden.
  void enterFolder(const FileURL& folder, const std::string& nameToShow = std::string());
  void selectName(const std::string& name);
  void clearSelection();
  void focusList();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void makeFileList(bool allowsMultipleSelection);
  void makePlaces();
  bool keyPressed(const QObject* widget, const QKeyEvent& event);
  bool returnPressed(const QObject* widget);
  void openRow(int row);
  void openPlace(int row);
  void showWhereItCameFrom(const FileURL& previous);

  PanelRules rules_;
  Events events_;
  FolderListModel* model_;
  QTreeView* fileList_;
  QListWidget* places_;
  PanelPathBar* pathBar_;
  QLabel* emptyHint_;
};

/// Whether a key is Return, the one beside the letters or the one of the number pad.
bool isReturn(const QKeyEvent& event);

}  // namespace tavrin
