#include "extensions/common/Installation.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

struct Release {
  void operator()(char* memory) const { std::free(memory); }
};

/// In the data of whatever module this is linked into.
const char anchor = 0;

}  // namespace

std::string installationPrefix(const std::string& prefixFromModule) {
  Dl_info module{};
  if (::dladdr(&anchor, &module) == 0 || module.dli_fname == nullptr) return {};
  const std::unique_ptr<char, Release> path(::realpath(module.dli_fname, nullptr));
  if (!path) return {};
  return standardizingPath(
      appendingPathComponent(deletingLastPathComponent(path.get()), prefixFromModule));
}

}  // namespace tavrin
