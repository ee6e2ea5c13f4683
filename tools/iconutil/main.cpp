#include <cstdio>

#include "icons/Files.h"
#include "icons/Version.h"
#include "iconutil/Arguments.h"
#include "iconutil/Packing.h"

namespace tavrin::iconutil {

void complain(const std::string& message) {
  icons::complain("iconutil", message);
}

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

bool perform(const Request& request) {
  switch (request.command) {
    case Request::Command::Pack:
      return pack(request.input, request.output);
    case Request::Command::Unpack:
      return unpack(request.input, request.output);
    case Request::Command::Version:
      return std::printf("iconutil %s\n", icons::version()) > 0;
    case Request::Command::Help:
      break;
  }
  return std::fputs(usage, stdout) >= 0;
}

int run(const std::vector<std::string>& words) {
  std::string mistake;
  const auto request = requestFromArguments(words, mistake);
  if (!request) {
    complain(mistake);
    return wrongUsage;
  }
  return perform(*request) ? 0 : failed;
}

}  // namespace

}  // namespace tavrin::iconutil

int main(int argumentCount, char** arguments) {
  return tavrin::iconutil::run({arguments + 1, arguments + argumentCount});
}
