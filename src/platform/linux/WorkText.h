#pragma once

#include <QString>

#include "platform/linux/WorkDisplay.h"

namespace tavrin {

/// What runs, on one line in the user's language: "Copying “Photos”".
QString workTitle(const ShownWork& work);

/// How far it is: "12,345 items · 1.2 GB · 45%", without what is not known.
QString workProgress(const ShownWork& work);

/// Both: "Copying “Photos”: 12,345 items · 1.2 GB · 45%".
QString workSummary(const ShownWork& work);

/// The menu item that cancels such a command.
QString cancelTitle(OperationKind kind);

/// The share that is done as a whole percentage; nothing when it is not known.
std::optional<unsigned> workPercentage(const ShownWork& work);

}  // namespace tavrin
