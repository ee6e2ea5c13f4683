#include "platform/linux/panel/PanelIcons.h"

#include <QGuiApplication>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

namespace tavrin {

namespace {

/// The drawings stand on a grid of 16 by 16.
constexpr qreal grid = 16.0;

void drawFolder(QPainter& painter, QColor) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0x3d, 0x8b, 0xd8));
  QPainterPath back;
  back.addRoundedRect(QRectF(1, 2.5, 7, 5), 1, 1);
  back.addRoundedRect(QRectF(1, 4, 14, 9.5), 1.2, 1.2);
  painter.drawPath(back.simplified());
  painter.setBrush(QColor(0x6c, 0xb0, 0xf0));
  painter.drawRoundedRect(QRectF(1, 6, 14, 8), 1.2, 1.2);
}

void drawDocument(QPainter& painter, QColor) {
  QPainterPath sheet;
  sheet.moveTo(3.5, 1.5);
  sheet.lineTo(9.5, 1.5);
  sheet.lineTo(12.5, 4.5);
  sheet.lineTo(12.5, 14.5);
  sheet.lineTo(3.5, 14.5);
  sheet.closeSubpath();
  painter.setPen(QPen(QColor(0x8a, 0x93, 0x9e), 1));
  painter.setBrush(QColor(0xfb, 0xfc, 0xfd));
  painter.drawPath(sheet);
  painter.drawPolyline(QPolygonF({{9.5, 1.5}, {9.5, 4.5}, {12.5, 4.5}}));
  painter.setPen(QPen(QColor(0xb4, 0xbc, 0xc6), 1));
  for (const qreal y : {7.5, 9.5, 11.5}) painter.drawLine(QPointF(5.5, y), QPointF(10.5, y));
}

void drawHome(QPainter& painter, QColor ink) {
  painter.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(QPolygonF({{1.8, 8.2}, {8, 2.5}, {14.2, 8.2}}));
  painter.drawPolyline(QPolygonF({{3.5, 7.5}, {3.5, 13.5}, {12.5, 13.5}, {12.5, 7.5}}));
  painter.drawPolyline(QPolygonF({{6.5, 13.5}, {6.5, 9.5}, {9.5, 9.5}, {9.5, 13.5}}));
}

void drawComputer(QPainter& painter, QColor ink) {
  painter.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawRoundedRect(QRectF(1.5, 2.5, 13, 8.5), 1, 1);
  painter.drawLine(QPointF(8, 11), QPointF(8, 13.5));
  painter.drawLine(QPointF(5, 13.5), QPointF(11, 13.5));
}

void drawVolume(QPainter& painter, QColor ink) {
  painter.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawRoundedRect(QRectF(1.5, 5, 13, 6.5), 1.5, 1.5);
  painter.drawLine(QPointF(4, 8.3), QPointF(8, 8.3));
  painter.setBrush(ink);
  painter.drawEllipse(QPointF(11.8, 8.3), 0.6, 0.6);
}

void drawUp(QPainter& painter, QColor ink) {
  painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawLine(QPointF(8, 3), QPointF(8, 13));
  painter.drawPolyline(QPolygonF({{4, 7}, {8, 3}, {12, 7}}));
}

void drawSymbol(QPainter& painter, PanelIcons::Symbol symbol, QColor ink) {
  switch (symbol) {
    case PanelIcons::Symbol::Folder:
      return drawFolder(painter, ink);
    case PanelIcons::Symbol::Document:
      return drawDocument(painter, ink);
    case PanelIcons::Symbol::Home:
      return drawHome(painter, ink);
    case PanelIcons::Symbol::Computer:
      return drawComputer(painter, ink);
    case PanelIcons::Symbol::Volume:
      return drawVolume(painter, ink);
    case PanelIcons::Symbol::Up:
      return drawUp(painter, ink);
  }
}

QPixmap drawnPixmap(PanelIcons::Symbol symbol, int size, QColor ink) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / grid, size / grid);
  painter.setBrush(Qt::NoBrush);
  drawSymbol(painter, symbol, ink);
  return pixmap;
}

QString suffixOf(const QString& name) {
  const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
  return dot > 0 ? name.mid(dot + 1).toLower() : QString();
}

QIcon iconOfKind(const QString& name) {
  const QIcon icon = PanelIcons::themeIconOfName(name);
  return icon.isNull() ? PanelIcons::icon(PanelIcons::Symbol::Document) : icon;
}

}  // namespace

QIcon PanelIcons::icon(Symbol symbol) {
  const QColor ink = QGuiApplication::palette().color(QPalette::WindowText);
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 48, 64}) icon.addPixmap(drawnPixmap(symbol, size, ink));
  return icon;
}

QIcon PanelIcons::icon(const QString& themeName, Symbol symbol) {
  return QIcon::hasThemeIcon(themeName) ? QIcon::fromTheme(themeName) : icon(symbol);
}

QPixmap PanelIcons::drawing(Symbol symbol, int side) {
  return drawnPixmap(symbol, side, QGuiApplication::palette().color(QPalette::WindowText));
}

QIcon PanelIcons::themeIconOfName(const QString& name) {
  for (const QMimeType& type : QMimeDatabase().mimeTypesForFileName(name)) {
    if (QIcon::hasThemeIcon(type.iconName())) return QIcon::fromTheme(type.iconName());
    if (QIcon::hasThemeIcon(type.genericIconName())) {
      return QIcon::fromTheme(type.genericIconName());
    }
  }
  const QString plain = QStringLiteral("text-x-generic");
  return QIcon::hasThemeIcon(plain) ? QIcon::fromTheme(plain) : QIcon();
}

const QIcon& PanelIcons::iconOfItem(const QString& name, bool isFolder) {
  if (isFolder) {
    if (!folderIcon_) folderIcon_ = icon(QStringLiteral("folder"), Symbol::Folder);
    return *folderIcon_;
  }
  const QString suffix = suffixOf(name);
  const auto found = iconsBySuffix_.constFind(suffix);
  if (found != iconsBySuffix_.constEnd()) return *found;
  return *iconsBySuffix_.insert(suffix, iconOfKind(QLatin1String("item.") + suffix));
}

}  // namespace tavrin
