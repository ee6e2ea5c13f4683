#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/linux/panel/PanelRules.h"

class QHBoxLayout;
class QToolButton;

namespace tavrin {

/// The way to the folder that a panel shows: a button for each component, and one for its parent.
/// Folders that the rules refuse have a disabled button. Where the buttons need more room than
/// there is, the first ones are left out.
class PanelPathBar final : public QWidget {
 public:
  /// `open` is called with the folder whose button was pressed.
  PanelPathBar(PanelRules rules, std::function<void(const FileURL&)> open, QWidget* parent);

  void setFolder(const FileURL& folder);

  /// Opens the parent of the folder; nothing at "/" and where the rules refuse it.
  void goUp();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QToolButton* makeComponentButton(const FileURL& url, bool isLast);
  void showButtonsThatFit();

  PanelRules rules_;
  std::function<void(const FileURL&)> open_;
  FileURL folder_ = FileURL::fileURLWithPath("/");
  QToolButton* upButton_;
  QWidget* strip_;
  QHBoxLayout* stripLayout_;
  std::vector<QToolButton*> buttons_;
};

}  // namespace tavrin
