#include "Commands.h"

#include <algorithm>

#include "Files.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"

namespace tavrin::defaultstool {

namespace {

using Command = Request::Command;

int failed(const SystemError& error) {
  complain(error.describe());
  return 1;
}

int outcome(const Status& status) {
  return status ? 0 : failed(status.error());
}

Result<PropertyList::Data> xmlOf(const PropertyList& value) {
  return LinuxPropertyListSerialization().dataFromPropertyList(
      value, PropertyListSerialization::Format::Xml);
}

PropertyList wholeDomain(const LinuxUserDefaults& defaults) {
  PropertyList::Dictionary values;
  for (const std::string& key : defaults.keys()) {
    if (auto value = defaults.objectForKey(key)) values.emplace(key, std::move(*value));
  }
  return values;
}

int show(const LinuxUserDefaults& defaults, const std::string& key) {
  const auto value = defaults.objectForKey(key);
  if (!value) {
    complain("no such key: \"" + key + "\"");
    return 1;
  }
  if (const auto text = defaults.stringForKey(key)) return outcome(writeOutput(*text + "\n"));
  const auto xml = xmlOf(*value);
  return xml ? outcome(writeFile("-", xml.value())) : failed(xml.error());
}

int exportTo(const std::string& file, const LinuxUserDefaults& defaults) {
  const auto xml = xmlOf(wholeDomain(defaults));
  return xml ? outcome(writeFile(file, xml.value())) : failed(xml.error());
}

/// Stores values so that they outlive a power cut; a failure has reached standard error.
int store(LinuxUserDefaults& defaults, const PropertyList::Dictionary& values) {
  return defaults.isStored() && defaults.setObjects(values) && defaults.synchronize() ? 0 : 1;
}

int importFrom(const std::string& file, LinuxUserDefaults& defaults) {
  const auto list = readPropertyList(file);
  if (!list) return failed(list.error());
  const auto* values = list.value().dictionaryIfDictionary();
  if (values == nullptr) {
    complain("the property list in " + file + " is no dictionary");
    return 1;
  }
  return store(defaults, *values);
}

int write(const Request& request, LinuxUserDefaults& defaults) {
  if (request.value) return store(defaults, {{*request.key, *request.value}});
  const auto list = readPropertyList(request.file);
  return list ? store(defaults, {{*request.key, list.value()}}) : failed(list.error());
}

int remove(const std::optional<std::string>& key, LinuxUserDefaults& defaults) {
  if (!defaults.isStored()) return 1;
  const auto known = defaults.keys();
  if (key && !std::binary_search(known.begin(), known.end(), *key)) {
    complain("no such key: \"" + *key + "\"");
    return 1;
  }
  if (key) {
    defaults.removeObjectForKey(*key);
  } else {
    for (const std::string& each : known) defaults.removeObjectForKey(each);
  }
  const auto left = defaults.keys();
  const bool gone = key ? !std::binary_search(left.begin(), left.end(), *key) : left.empty();
  return gone && defaults.synchronize() ? 0 : 1;
}

int performInDomain(const Request& request, LinuxUserDefaults& defaults) {
  switch (request.command) {
    case Command::Read:
      return request.key ? show(defaults, *request.key) : exportTo("-", defaults);
    case Command::Write:
      return write(request, defaults);
    case Command::Delete:
      return remove(request.key, defaults);
    case Command::Export:
      return exportTo(request.file, defaults);
    default:
      return importFrom(request.file, defaults);
  }
}

}  // namespace

void complain(const std::string& message) {
  LinuxLog().write("defaults: " + message);
}

int perform(const Request& request) {
  if (request.command == Command::Help) return outcome(writeOutput(usage));
  if (request.command == Command::Version) {
    return outcome(writeOutput(std::string("tavrin-defaults ") + identity::version + "\n"));
  }
  LinuxLog log;
  LinuxUserDefaultsProvider provider(log);
  const auto defaults =
      request.isGroup ? provider.openSuite(identity::groupIdentifier) : provider.openStandard();
  return performInDomain(request, *defaults);
}

}  // namespace tavrin::defaultstool
