#pragma once

#include <QHash>
#include <QIcon>
#include <QString>
#include <optional>

namespace tavrin {

/// The icons of a panel: the desktop's own, or plain drawings of ours where the desktop has no icon
/// theme.
class PanelIcons {
 public:
  enum class Symbol { Folder, Document, Home, Computer, Volume, Up };

  static QIcon icon(Symbol symbol);
  /// The theme's icon of that name, or the symbol's.
  static QIcon icon(const QString& themeName, Symbol symbol);

  /// A symbol's drawing at a side of `side` pixels, in the colour of window texts.
  static QPixmap drawing(Symbol symbol, int side);
  /// The theme's icon for files of that name, by the name alone; null when it has none at all.
  static QIcon themeIconOfName(const QString& name);

  /// The icon for an item of that name; one per kind is kept.
  const QIcon& iconOfItem(const QString& name, bool isFolder);

 private:
  QHash<QString, QIcon> iconsBySuffix_;
  std::optional<QIcon> folderIcon_;
};

}  // namespace tavrin
