#include "icons/Version.h"

#include "platform/linux/Identity.h"

namespace tavrin::icons {

const char* version() {
  return identity::version;
}

}  // namespace tavrin::icons
