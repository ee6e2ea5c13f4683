#pragma once

#include "platform/UserDefaults.h"
#include "settings/DefaultSettings.h"

namespace tavrin {

/// Gives both stores the defaults that they lack and makes what the suite was given durable. A
/// value that is there is never replaced, whoever wrote it and when. Where nothing is lacking this
/// costs one list of keys a store.
void seedSettings(const DefaultSettings& defaults, UserDefaults& standard,
                  UserDefaults& sharedSuite);

}  // namespace tavrin
