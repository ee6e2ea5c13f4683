#include <cstdlib>

#include "fuzz/HostileValues.h"
#include "fuzz/Require.h"
#include "platform/linux/ApplicationTable.h"
#include "platform/linux/ResourceTable.h"
#include "platform/linux/TerminalChoice.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeLog.h"
#include "tests/support/FakePropertyLists.h"

namespace tavrin::fuzz {

namespace {

constexpr const char* path = "/usr/share/tavrin/table.plist";

PropertyList textsFrom(Input& input) {
  if (input.ConsumeIntegralInRange<int>(0, 7) == 7) return anyValue(input);
  PropertyList::Array texts;
  const auto count = input.ConsumeIntegralInRange<std::size_t>(0, 3);
  while (texts.size() < count) {
    if (input.ConsumeIntegralInRange<int>(0, 7) == 7) texts.push_back(anyValue(input));
    texts.emplace_back(
        textFrom(input, {"GNOME", "--working-directory=%f", "%f%f", "code.desktop"}));
  }
  return texts;
}

PropertyList terminalFrom(Input& input) {
  PropertyList::Dictionary row;
  for (const char* key : {"Desktops", "Window", "Tab"}) {
    if (input.ConsumeBool()) row.emplace(key, textsFrom(input));
  }
  row.emplace("Program", input.ConsumeBool() ? PropertyList("/bin/sh") : anyValue(input));
  return row;
}

PropertyList tableFrom(Input& input) {
  PropertyList::Dictionary table;
  for (const char* key : {"DesktopEntries", "BundleIdentifiers", "WindowClasses"}) {
    const auto kind = input.ConsumeIntegralInRange<int>(0, 3);
    if (kind == 0) table.emplace(key, anyValue(input));
    if (kind > 1) table.emplace(key, PropertyList::Dictionary{{"Editor", textsFrom(input)}});
  }
  PropertyList::Array terminals;
  const auto count = input.ConsumeIntegralInRange<std::size_t>(0, 4);
  while (terminals.size() < count) terminals.push_back(terminalFrom(input));
  table.emplace("Terminals",
                input.ConsumeIntegralInRange<int>(0, 7) == 7 ? anyValue(input) : terminals);
  return table;
}

struct Tables {
  explicit Tables(const PropertyList& contents) {
    bundle.resources["table.plist"] = path;
    bundle.resources["Applications.plist"] = path;
    propertyLists.files.insert_or_assign(path, contents);
  }

  FakeBundle bundle;
  FakePropertyLists propertyLists;
  FakeLog log;
};

void run(Input& input) {
  Tables tables(tableFrom(input));
  ApplicationTable applications(tables.bundle, tables.propertyLists, tables.log);
  applications.desktopEntries("Editor");
  applications.bundleIdentifier("Editor");
  applications.windowClasses("Editor");
  ResourceTable terminals(tables.bundle, tables.propertyLists, tables.log, "table");
  const std::string folder = "/home/ada/%f " + input.ConsumeRandomLengthString(8);
  for (const char* place : {"Tab", "Window"}) {
    const auto chosen = chooseTerminal(terminals, place, folder);
    require(!chosen || !chosen->program.empty(), "a terminal that was chosen has a program");
  }
}

}  // namespace

}  // namespace tavrin::fuzz

/// Programs are not looked for; one is known by its path.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  ::setenv("PATH", "/nonexistent", 1);                 // NOLINT(concurrency-mt-unsafe)
  ::setenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME", 1);  // NOLINT(concurrency-mt-unsafe)
  ::unsetenv("TERMINAL");                              // NOLINT(concurrency-mt-unsafe)
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::Input input(bytes, size);
  tavrin::fuzz::run(input);
  return 0;
}
