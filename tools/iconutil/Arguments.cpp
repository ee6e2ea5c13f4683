#include "iconutil/Arguments.h"

#include <string_view>

namespace tavrin::iconutil {

const char* const usage =
    R"(Packs a folder of bitmaps into an icon file, or unpacks one.

  iconutil -c icns FOLDER.iconset [-o FILE.icns]
  iconutil -c iconset FILE.icns [-o FOLDER.iconset]

The result is put beside the input, under its name with the other ending, or at
the path after -o (--output). -c is --convert.

The folder holds PNG images with these names, each exactly as large as it says
(twice that for "@2x"): icon_16x16.png, icon_32x32.png, icon_128x128.png,
icon_256x256.png, icon_512x512.png, and each with @2x before ".png". A missing
one is left out; hidden files are ignored; any other name is refused. An icon
file is replaced, a folder is not.

Exit status: 0 done, 1 failed, 2 wrong usage.
)";

namespace {

constexpr std::string_view folderEnding = ".iconset";
constexpr std::string_view fileEnding = ".icns";

struct Words {
  std::optional<std::string> conversion;
  std::optional<std::string> output;
  std::vector<std::string> inputs;
};

bool isOption(const std::string& word, const char* brief, const char* full) {
  return word == brief || word == full;
}

std::optional<Words> sorted(const std::vector<std::string>& words) {
  Words found;
  bool optionsEnded = false;
  for (std::size_t index = 0; index < words.size(); ++index) {
    const std::string& word = words[index];
    const bool converts = !optionsEnded && isOption(word, "-c", "--convert");
    const bool putsOut = !optionsEnded && isOption(word, "-o", "--output");
    if (converts || putsOut) {
      if (++index == words.size()) return std::nullopt;
      (converts ? found.conversion : found.output) = words[index];
    } else if (!optionsEnded && word == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && word.size() > 1 && word.starts_with('-')) {
      return std::nullopt;
    } else {
      found.inputs.push_back(word);
    }
  }
  return found;
}

std::string withoutTrailingSeparators(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

}  // namespace

std::optional<Request> requestFromArguments(const std::vector<std::string>& words,
                                            std::string& mistake) {
  if (words.size() == 1 && (words[0] == "--help" || words[0] == "-h")) return Request{};
  if (words.size() == 1 && words[0] == "--version") {
    return Request{Request::Command::Version, "", ""};
  }
  const auto found = sorted(words);
  const bool packs = found && found->conversion == "icns";
  const bool unpacks = found && found->conversion == "iconset";
  if (!(packs || unpacks) || found->inputs.size() != 1) {
    mistake = "see iconutil --help for the usage";
    return std::nullopt;
  }
  Request request{packs ? Request::Command::Pack : Request::Command::Unpack,
                  withoutTrailingSeparators(found->inputs.front()), ""};
  const std::string_view ending = packs ? folderEnding : fileEnding;
  if (!request.input.ends_with(ending) || request.input.size() == ending.size()) {
    mistake = "the name of " + request.input + " does not end in " + std::string(ending);
    return std::nullopt;
  }
  const std::string stem = request.input.substr(0, request.input.size() - ending.size());
  request.output = withoutTrailingSeparators(
      found->output.value_or(stem + std::string(packs ? fileEnding : folderEnding)));
  return request;
}

}  // namespace tavrin::iconutil
