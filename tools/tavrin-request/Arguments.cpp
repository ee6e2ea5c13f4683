#include "Arguments.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "foundation/ActionNames.h"
#include "foundation/RequestKeys.h"

namespace tavrin::requesttool {

const char* const usage =
    R"(Sends a request to Tavrin, as its menu does; starts Tavrin if it does not run.

  tavrin-request ACTION [KEY=VALUE]... [--files0-from=FILE] [--] [NAME]...

The NAMEs are the files and folders that the action works on, relative to the
current folder or absolute. "-" reads them from standard input, --files0-from
from a file ("-" again is standard input), each ended by a NUL byte. A name that
looks like an option or a KEY=VALUE goes after "--".

KEY is one of the request's keys, and VALUE is sent as it stands: Path, ToPath,
PasteInPath, File, SelectedFile, SelectedFilesUrl, CuttingFilesURL, and Tag, a
number.

  tavrin-request copyFilesTo ToPath=/backup *.txt
  tavrin-request pasteSelectedFiles PasteInPath="$PWD" ../a.txt
  tavrin-request customIcon Tag=2 Pictures

Exit status: 0 Tavrin has accepted the request, 1 it has not, 2 wrong usage.

)";

namespace {

constexpr std::string_view nameFileOption = "--files0-from=";

Order mistake(std::string complaint) {
  return {Order::Kind::Mistake, std::move(complaint)};
}

/// The letters before the first "=" of a word that may set a key; "" for a word that is a name.
std::string_view keyOf(std::string_view word) {
  const auto end = word.find('=');
  if (end == std::string_view::npos) return {};
  const auto isLetter = [](char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  };
  const std::string_view key = word.substr(0, end);
  return std::all_of(key.begin(), key.end(), isLetter) ? key : std::string_view();
}

bool isStringKey(std::string_view key) {
  const auto& keys = request_key::strings;
  return key != request_key::action && std::find(keys.begin(), keys.end(), key) != keys.end();
}

/// What a word sets a key to; nothing when it cannot be.
std::optional<PropertyList> valueOfKey(std::string_view key, std::string_view text) {
  if (isStringKey(key)) return PropertyList(text);
  if (key != request_key::tag) return std::nullopt;
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return PropertyList(number);
}

/// Takes one word before the "--". Returns what is wrong with it; "" for nothing.
std::string takeWord(Order& order, const std::string& word) {
  const bool isOption = word.starts_with(nameFileOption);
  if (word == "-" || isOption) {
    if (!order.nameFile.empty()) return "names are read from one place only";
    order.nameFile = isOption ? word.substr(nameFileOption.size()) : word;
    return order.nameFile.empty() ? "a file of names is missing" : "";
  }
  if (word.starts_with("-")) return "unknown option " + word;
  const std::string_view key = keyOf(word);
  if (key.empty()) {
    order.names.push_back(word);
    return "";
  }
  const auto value = valueOfKey(key, std::string_view(word).substr(key.size() + 1));
  if (!value) return "\"" + word + "\" sets no key of a request (a name goes after \"--\")";
  if (!order.keys.emplace(key, *value).second) return "the key of " + word + " is set already";
  return "";
}

}  // namespace

std::string listOfActions() {
  std::string list = "Actions:\n";
  for (const char* name : action_name::all) list += std::string("  ") + name + "\n";
  return list;
}

Order orderFromArguments(const std::vector<std::string>& words) {
  if (words.empty()) return mistake("an action is missing; see tavrin-request --help");
  if (words[0] == "--help" || words[0] == "-h") return {Order::Kind::Help};
  if (words[0] == "--version") return {Order::Kind::Version};
  const auto arguments = argumentsOfAction(words[0]);
  if (!arguments) return mistake("no such action: \"" + words[0] + "\"\n" + listOfActions());
  Order order{Order::Kind::Send};
  order.arguments = *arguments;
  for (auto word = words.begin() + 1; word != words.end(); ++word) {
    if (*word == "--") {
      order.names.insert(order.names.end(), word + 1, words.end());
      break;
    }
    if (std::string complaint = takeWord(order, *word); !complaint.empty()) {
      return mistake(std::move(complaint));
    }
  }
  return order;
}

}  // namespace tavrin::requesttool
