// Runs one operation of the file engine, for tests that kill it and for benchmarks:
//   tavrin-file-driver copy SOURCE DESTINATION
//   tavrin-file-driver move SOURCE DESTINATION
//   tavrin-file-driver remove PATH
// Records of partial items go to the folder in TAVRIN_RECORD_FOLDER, or to one below /tmp.

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "foundation/PathString.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PartialItems.h"
#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"

namespace {

using namespace tavrin;

class PathItem {
 public:
  explicit PathItem(const std::string& path)
      : parent_(::open(deletingLastPathComponent(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
        reference_{parent_.get(), lastPathComponent(path), path} {}

  const ItemReference& reference() const { return reference_; }

 private:
  FileDescriptor parent_;
  ItemReference reference_;
};

std::string recordFolder() {
  const char* folder = std::getenv("TAVRIN_RECORD_FOLDER");  // NOLINT(concurrency-mt-unsafe)
  return folder != nullptr ? folder : "/tmp/tavrin-file-driver-records";
}

int usage() {
  std::fputs("usage: tavrin-file-driver copy|move SOURCE DESTINATION | remove PATH\n", stderr);
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return usage();
  const std::string_view operation = arguments[1];
  const PathItem source(arguments[2]);
  PartialItems partials(recordFolder());
  Status status = success();
  if (operation == "remove" && count == 3) {
    status = removeItem(source.reference());
  } else if (operation == "copy" && count == 4) {
    status = copyItem(source.reference(), PathItem(arguments[3]).reference(), partials);
  } else if (operation == "move" && count == 4) {
    status = moveItem(source.reference(), PathItem(arguments[3]).reference(), partials);
  } else {
    return usage();
  }
  if (status) return 0;
  std::fprintf(stderr, "%s\n", status.error().describe().c_str());
  return 1;
}
