#include "app/CommandLine.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "foundation/FileURL.h"
#include "settings/PreferencesWindow.h"

namespace tavrin {

namespace {

CommandLine invalid(std::string complaint) {
  return {CommandLine::Mode::Invalid, {}, std::move(complaint)};
}

std::optional<CommandLine::Mode> modeOfOption(std::string_view option) {
  if (option == "--help" || option == "-h") return CommandLine::Mode::Help;
  if (option == "--version") return CommandLine::Mode::Version;
  if (option == "--gapplication-service") return CommandLine::Mode::Service;
  if (option == preferencesWindowOption) return CommandLine::Mode::PreferencesWindow;
  return std::nullopt;
}

/// "scheme:/..." (RFC 3986), which a shell or a desktop hands over for any kind of URL.
bool isURL(std::string_view argument) {
  const auto isOfScheme = [](unsigned char character) {
    return std::isalnum(character) != 0 || character == '+' || character == '-' || character == '.';
  };
  const auto colon = std::find_if_not(argument.begin(), argument.end(), isOfScheme);
  return colon != argument.begin() && std::string_view(colon, argument.end()).starts_with(":/");
}

std::optional<FileURL> urlOfArgument(std::string_view argument, std::string_view workingFolder) {
  if (isURL(argument)) return FileURL::urlWithString(argument);
  return FileURL::fileURLWithPath(argument, workingFolder);
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string_view>& arguments,
                             std::string_view workingFolder) {
  CommandLine result;
  bool optionsEnded = false;
  for (const std::string_view argument : arguments) {
    if (argument.empty()) return invalid("an empty file name");
    if (!optionsEnded && argument == "--") {
      optionsEnded = true;
      continue;
    }
    if (!optionsEnded && argument.starts_with("-")) {
      const auto mode = modeOfOption(argument);
      if (!mode) return invalid("unknown option " + std::string(argument));
      result.mode = *mode;
      continue;
    }
    const auto url = urlOfArgument(argument, workingFolder);
    if (!url) return invalid("not the URL of a file: " + std::string(argument));
    result.files.push_back(url->path());
  }
  return result;
}

std::string_view commandLineHelp() {
  return "Usage: tavrin [OPTION]... [FILE]...\n"
         "Carries out the request files given, or shows the preferences.\n\n"
         "  --gapplication-service  wait for requests on the session bus\n"
         "  --help                  show this help\n"
         "  --version               show the version\n";
}

}  // namespace tavrin
