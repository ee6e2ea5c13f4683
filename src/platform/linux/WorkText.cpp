#include "platform/linux/WorkText.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/TextTable.h"

namespace tavrin {

namespace {

constexpr qsizetype longestName = 60;

/// A name of 255 bytes would make a tooltip wider than a screen.
QString shortened(const QString& name) {
  if (name.size() <= longestName) return name;
  qsizetype end = longestName / 2;
  qsizetype rest = name.size() - longestName / 2;
  // Characters beyond the basic plane have two parts, which belong together.
  if (name.at(end).isLowSurrogate()) --end;
  if (name.at(rest).isLowSurrogate()) ++rest;
  return name.left(end) + QChar(0x2026) + name.mid(rest);
}

QString titleFormat(OperationKind kind) {
  switch (kind) {
    case OperationKind::Copy:
      return QCoreApplication::translate("Work", "Copying “%1”");
    case OperationKind::Move:
      return QCoreApplication::translate("Work", "Moving “%1”");
    case OperationKind::Remove:
      break;
  }
  return QCoreApplication::translate("Work", "Deleting “%1”");
}

QString itemCount(std::uint64_t count) {
  const std::string text = translatedCount("%n item", "%n items", count);
  return QString::fromStdString(text).replace(QLatin1String("%n"),
                                              QLocale().toString(qulonglong{count}));
}

}  // namespace

QString workTitle(const ShownWork& work) {
  return titleFormat(work.kind).arg(shortened(displayName(lastPathComponent(work.path))));
}

QString workProgress(const ShownWork& work) {
  QStringList parts;
  if (work.items > 0) parts << itemCount(work.items);
  if (work.bytes > 0) {
    parts << QLocale().formattedDataSize(static_cast<qint64>(work.bytes), 1,
                                         QLocale::DataSizeSIFormat);
  }
  if (const auto percentage = workPercentage(work)) {
    // Translators: a percentage, such as "45%".
    parts << QCoreApplication::translate("Work", "%1%").arg(QLocale().toString(*percentage));
  }
  return parts.join(QStringLiteral(" · "));
}

QString workSummary(const ShownWork& work) {
  const QString progress = workProgress(work);
  if (progress.isEmpty()) return workTitle(work);
  // Translators: what runs and how far it is: "Copying “Photos”: 12,345 items · 1.2 GB · 45%".
  return QCoreApplication::translate("Work", "%1: %2").arg(workTitle(work), progress);
}

QString cancelTitle(OperationKind kind) {
  switch (kind) {
    case OperationKind::Copy:
      return QCoreApplication::translate("Work", "Cancel Copying");
    case OperationKind::Move:
      return QCoreApplication::translate("Work", "Cancel Moving");
    case OperationKind::Remove:
      break;
  }
  return QCoreApplication::translate("Work", "Cancel Deleting");
}

std::optional<unsigned> workPercentage(const ShownWork& work) {
  if (!work.share) return std::nullopt;
  return static_cast<unsigned>(*work.share * 100);
}

}  // namespace tavrin
