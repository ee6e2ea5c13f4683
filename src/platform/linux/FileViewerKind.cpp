#include "platform/linux/FileViewerKind.h"

#include <algorithm>
#include <array>

#include "foundation/FileManagers.h"

namespace tavrin {

namespace {

constexpr std::array fileViewers = {
    FileViewerKind{"org.gnome.Nautilus", false, file_manager::nautilus, "--quit",
                   "--gapplication-service"},
    FileViewerKind{"org.Nemo", false, file_manager::nemo, "--quit", "--no-default-window"},
    FileViewerKind{"org.mate.Caja", false, file_manager::caja, "--quit", "--no-default-window"},
    FileViewerKind{"org.xfce.Thunar", false, file_manager::thunar, "--quit", "--daemon"},
    FileViewerKind{"org.kde.dolphin-", true, file_manager::dolphin, nullptr, "--daemon"},
};

}  // namespace

const FileViewerKind* fileViewerOfBusName(const std::string& busName) {
  const auto* const found = std::ranges::find_if(fileViewers, [&](const FileViewerKind& kind) {
    return kind.hasNamePerProcess ? busName.starts_with(kind.busName) : busName == kind.busName;
  });
  return found == fileViewers.end() ? nullptr : found;
}

}  // namespace tavrin
