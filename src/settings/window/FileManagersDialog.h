#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "settings/SettingsController.h"
#include "settings/window/WindowPalette.h"

class QCheckBox;
class QGridLayout;
class QLabel;
class QPushButton;

namespace tavrin {

/// Shows in which file managers the menu is on, and switches it there. Each change is stored at
/// once; what changes elsewhere is shown at once, or when the dialog next gets the keyboard.
class FileManagersDialog final : public QDialog {
  Q_OBJECT

 public:
  /// `platform` and `settings` outlive the dialog.
  FileManagersDialog(Platform& platform, SettingsController& settings, WindowPalette palette,
                     QWidget* parent);

  void setColours(const WindowPalette& palette);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  struct Row {
    std::string identifier;
    QCheckBox* box;
    QLabel* state;
  };

  void layOut();
  void showHosts();
  void makeRows(const std::vector<ExtensionHost>& hosts);
  void makeRow(const ExtensionHost& host);
  void showState(const Row& row, ExtensionHost::State state);
  QLabel* makeIcon(const std::string& identifier);
  QLabel* makeText(const char* text);
  QString localized(const char* text) const;

  Platform& platform_;
  SettingsController& settings_;
  WindowPalette palette_;
  QWidget* list_ = nullptr;
  QLabel* hint_ = nullptr;
  QPushButton* restartButton_ = nullptr;
  std::vector<Row> rows_;
  Observation observation_;
};

}  // namespace tavrin
