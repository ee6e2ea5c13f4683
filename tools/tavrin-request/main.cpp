#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "Arguments.h"
#include "NameList.h"
#include "foundation/RequestKeys.h"
#include "platform/linux/Identity.h"
#include "platform/linux/RequestSending.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin::requesttool {

namespace {

constexpr int failed = 1;
constexpr int usageError = 2;

int complain(int status, const std::string& message) {
  std::fprintf(stderr, "tavrin-request: %s%s", message.c_str(),
               message.ends_with('\n') ? "" : "\n");
  return status;
}

int say(const std::string& text) {
  const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  return isWritten ? 0 : complain(failed, systemError("write", "standard output").describe());
}

/// The paths of the items of an order.
Result<std::vector<std::string>> pathsOf(const Order& order) {
  std::vector<std::string> names = order.names;
  if (!order.nameFile.empty()) {
    auto more = readNames(order.nameFile);
    if (!more) return more.error();
    names.insert(names.end(), more.value().begin(), more.value().end());
  }
  std::error_code gone;
  const std::string workingFolder = std::filesystem::current_path(gone).string();
  for (std::string& name : names) {
    if (name.empty()) return systemError("take an empty name", "", EINVAL);
    if (gone && !name.starts_with('/')) return SystemError{"find the current folder", "", gone};
    name = absolutePathOf(name, workingFolder);
  }
  return names;
}

Result<PropertyList> requestOf(const Order& order) {
  auto paths = pathsOf(order);
  if (!paths) return paths.error();
  auto items = requestItems(order.arguments, paths.value());
  if (!items) return items.error();
  PropertyList::Dictionary entries = order.keys;
  if (items.value().contains(order.arguments.key) && entries.contains(order.arguments.key)) {
    return systemError("take names beside the key", order.arguments.key, EINVAL);
  }
  // A folder that was given stands before the one that the file stands in.
  entries.merge(items.value());
  entries.emplace(request_key::action, order.arguments.action);
  return PropertyList(std::move(entries));
}

int send(const Order& order) {
  const auto request = requestOf(order);
  if (!request) return complain(usageError, request.error().describe());
  const Status accepted = sendRequest(request.value());
  return accepted ? 0 : complain(failed, accepted.error().describe());
}

int perform(const Order& order) {
  switch (order.kind) {
    case Order::Kind::Help:
      return say(usage + listOfActions());
    case Order::Kind::Version:
      return say(std::string("tavrin-request ") + identity::version + "\n");
    case Order::Kind::Send:
      return send(order);
    default:
      return complain(usageError, order.mistake);
  }
}

}  // namespace

}  // namespace tavrin::requesttool

int main(int argumentCount, char** arguments) {
  using namespace tavrin::requesttool;
  return perform(orderFromArguments({arguments + 1, arguments + argumentCount}));
}
