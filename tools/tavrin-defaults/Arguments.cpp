#include "Arguments.h"

#include <charconv>
#include <cmath>

namespace tavrin::defaultstool {

const char* const usage =
    R"(Reads and changes the settings of Tavrin, whether it runs or not.

  tavrin-defaults read DOMAIN [KEY]
  tavrin-defaults write DOMAIN KEY -bool|-int|-float|-string|-plist VALUE
  tavrin-defaults delete DOMAIN [KEY]
  tavrin-defaults export DOMAIN FILE
  tavrin-defaults import DOMAIN FILE

DOMAIN is "standard" (the program's own settings) or "group" (what the menu
extensions read). FILE is a property list, or "-" for the standard stream; so is
the VALUE of -plist. A boolean is yes, no, true, false, 1 or 0.

read shows strings and numbers as they are, booleans as 1 or 0, and everything
else as an XML property list. import sets each key of the list and leaves the
others alone.

Exit status: 0 done, 1 no such key or failed, 2 wrong usage.
)";

namespace {

using Command = Request::Command;

template <typename Number, typename... Form>
std::optional<PropertyList> numberFrom(std::string_view text, Form... form) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, form...);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return PropertyList(number);
}

/// The words for infinity and for what is no number are no values, as numbers too large are none.
std::optional<PropertyList> realFrom(const std::string& text) {
  auto number = numberFrom<double>(text, std::chars_format::general);
  return number && std::isfinite(number->doubleValue()) ? number : std::nullopt;
}

std::optional<PropertyList> booleanFrom(const std::string& text) {
  if (text == "yes" || text == "true" || text == "1" || text == "YES" || text == "TRUE") {
    return PropertyList(true);
  }
  if (text == "no" || text == "false" || text == "0" || text == "NO" || text == "FALSE") {
    return PropertyList(false);
  }
  return std::nullopt;
}

bool fillValue(Request& request, const std::string& kind, const std::string& text,
               std::string& mistake) {
  if (kind == "-plist") {
    request.file = text;
    return true;
  }
  if (kind == "-bool") request.value = booleanFrom(text);
  if (kind == "-int") request.value = numberFrom<std::int64_t>(text, 10);
  if (kind == "-float") request.value = realFrom(text);
  if (kind == "-string") request.value = text;
  if (!request.value) mistake = "\"" + text + "\" is no value of " + kind;
  return request.value.has_value();
}

std::optional<Command> commandNamed(const std::string& name) {
  if (name == "read") return Command::Read;
  if (name == "write") return Command::Write;
  if (name == "delete") return Command::Delete;
  if (name == "export") return Command::Export;
  return name == "import" ? std::optional(Command::Import) : std::nullopt;
}

/// Whether so many words go with the command, its name included.
bool fits(Command command, std::size_t count) {
  switch (command) {
    case Command::Read:
    case Command::Delete:
      return count == 2 || count == 3;
    case Command::Write:
      return count == 5;
    case Command::Export:
    case Command::Import:
      return count == 3;
    default:
      return count == 1;
  }
}

bool fillOperands(Request& request, const std::vector<std::string>& words, std::string& mistake) {
  if (request.command == Command::Export || request.command == Command::Import) {
    request.file = words[2];
    return true;
  }
  if (words.size() > 2) request.key = words[2];
  if (request.key && request.key->empty()) {
    mistake = "a key has at least one character";
    return false;
  }
  return request.command != Command::Write || fillValue(request, words[3], words[4], mistake);
}

}  // namespace

std::optional<Request> requestFromArguments(const std::vector<std::string>& words,
                                            std::string& mistake) {
  Request request;
  if (words.size() == 1 && (words[0] == "--help" || words[0] == "--version")) {
    request.command = words[0] == "--help" ? Command::Help : Command::Version;
    return request;
  }
  const auto command = words.empty() ? std::nullopt : commandNamed(words[0]);
  if (!command || !fits(*command, words.size())) {
    mistake = "see tavrin-defaults --help for the usage";
    return std::nullopt;
  }
  if (words[1] != "standard" && words[1] != "group") {
    mistake = "no such domain: \"" + words[1] + "\" (there are \"standard\" and \"group\")";
    return std::nullopt;
  }
  request.command = *command;
  request.isGroup = words[1] == "group";
  if (!fillOperands(request, words, mistake)) return std::nullopt;
  return request;
}

}  // namespace tavrin::defaultstool
