// Runs one operation of the file engine, for tests that kill it and for benchmarks:
//   tavrin-file-driver copy SOURCE DESTINATION
//   tavrin-file-driver move SOURCE DESTINATION
//   tavrin-file-driver remove PATH
// Records of partial items go to the folder in TAVRIN_RECORD_FOLDER, or to one below /tmp.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/PartialItems.h"
#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"
#include "tests/support/OpenItem.h"

namespace {

using namespace tavrin;

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
  const testing::OpenItem source(arguments[2]);
  PartialItems partials(recordFolder());
  Status status = success();
  if (operation == "remove" && count == 3) {
    status = removeItem(source);
  } else if (operation == "copy" && count == 4) {
    status = copyItem(source, testing::OpenItem(arguments[3]), partials);
  } else if (operation == "move" && count == 4) {
    status = moveItem(source, testing::OpenItem(arguments[3]), partials);
  } else {
    return usage();
  }
  if (status) return 0;
  std::fprintf(stderr, "%s\n", status.error().describe().c_str());
  return 1;
}
