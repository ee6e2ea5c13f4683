// Writes settings for ever, for tests that kill it:
//   tavrin-settings-writer NAME STEP
// Goes on behind step STEP, in the standard domain, with keys that begin with NAME. Each step is
// one commit; its number goes to standard output when it is made, and "synchronized" behind it when
// it was made durable as well. tests/faults/settings_steps.py knows what each step leaves.

#include <unistd.h>

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"

namespace {

using namespace tavrin;

constexpr std::int64_t stepsOfTurn = 3;
constexpr std::int64_t turnsBetweenSynchronizing = 7;
constexpr std::int64_t rows = 6;
constexpr std::int64_t differentIcons = 40;

/// Large data: each has a row of its own in the database.
PropertyList iconOf(std::int64_t number) {
  const std::int64_t kind = number % differentIcons;
  PropertyList::Data bytes(static_cast<std::size_t>(5000 + kind * 1500));
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    bytes[index] =
        static_cast<std::uint8_t>(index * 7 + index / 256 + static_cast<std::size_t>(kind));
  }
  return PropertyList(std::move(bytes));
}

PropertyList listOf(std::int64_t turn) {
  PropertyList::Array list;
  for (std::int64_t row = 0; row < rows; ++row) {
    list.emplace_back(PropertyList::Dictionary{{"turn", turn}, {"icon", iconOf(turn + row)}});
  }
  return PropertyList(std::move(list));
}

void makeStep(LinuxUserDefaults& defaults, const std::string& name, std::int64_t step) {
  const std::int64_t turn = step / stepsOfTurn;
  if (step % stepsOfTurn == 0) return defaults.setObject(listOf(turn), name + ".list");
  if (step % stepsOfTurn == 1) {
    static_cast<void>(defaults.setObjects({{name + ".left", turn}, {name + ".right", turn}}));
    return;
  }
  if (turn % 2 == 1) return defaults.setObject(turn, name + ".odd");
  defaults.removeObjectForKey(name + ".odd");
}

void say(const std::string& line) {
  if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) ::_exit(1);
}

}  // namespace

int main(int count, char** arguments) {
  std::int64_t step = -1;
  const std::string_view number = count == 3 ? arguments[2] : "";
  if (std::from_chars(number.data(), number.data() + number.size(), step).ec != std::errc()) {
    return 2;
  }
  LinuxLog log;
  LinuxUserDefaultsProvider provider(log);
  const auto defaults = provider.openStandard();
  while (defaults->isStored()) {
    makeStep(*defaults, arguments[1], ++step);
    say(std::to_string(step) + "\n");
    if (step % (stepsOfTurn * turnsBetweenSynchronizing) != 0) continue;
    if (!defaults->synchronize()) return 1;
    say("synchronized\n");
  }
  return 1;
}
