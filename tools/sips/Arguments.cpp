#include "sips/Arguments.h"

#include <charconv>
#include <string_view>

namespace tavrin::sips {

const char* const usage =
    R"(Scales an image to an exact size and writes it as PNG.

  sips -z HEIGHT WIDTH IMAGE -o OUTPUT

HEIGHT and WIDTH are pixels, from 1 to 16384; the proportions of the image do
not matter. IMAGE is a PNG, JPEG, TIFF, GIF, WebP, SVG, BMP, ICNS or HEIC file,
of which the first or, for ICNS, the largest picture is taken; it is never
changed. Transparency and the colour profile are kept, the orientation that a
camera noted is applied, other notes are not kept.

OUTPUT (-o, --out) is a file, which is replaced, or a folder that is there, in
which the file gets the name of IMAGE. Either way it holds PNG data.

Images of more than 268435456 pixels (16384 x 16384) are refused, and given up
when they take more than a minute of the processor's time.

Exit status: 0 done, 1 failed, 2 wrong usage.
)";

namespace {

/// 0 for what is no size.
int sizeFrom(const std::string& word) {
  int size = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, size);
  const bool isSize = error == std::errc() && stop == end && size > 0 && size <= longestSide;
  return isSize ? size : 0;
}

class Reader {
 public:
  explicit Reader(const std::vector<std::string>& words) : words_(words) {}

  /// False when the words are no request.
  bool read(Request& request) {
    while (const std::string* word = next()) {
      if (!take(*word, request)) return false;
    }
    return request.height > 0 && !request.input.empty() && !request.output.empty();
  }

 private:
  bool take(const std::string& word, Request& request) {
    if (!optionsEnded_ && word == "--") return optionsEnded_ = true;
    if (!optionsEnded_ && (word == "-z" || word == "--resampleHeightWidth")) {
      return takeSize(request.height) && takeSize(request.width);
    }
    if (!optionsEnded_ && (word == "-o" || word == "--out"))
      return takeOnce(next(), request.output);
    if (!optionsEnded_ && word.starts_with('-')) return false;
    return takeOnce(&word, request.input);
  }
  static bool takeOnce(const std::string* word, std::string& place) {
    if (word == nullptr || word->empty() || !place.empty()) return false;
    place = *word;
    return true;
  }
  bool takeSize(int& size) {
    const std::string* word = next();
    size = word != nullptr && size == 0 ? sizeFrom(*word) : 0;
    return size > 0;
  }
  const std::string* next() { return index_ < words_.size() ? &words_[index_++] : nullptr; }

  const std::vector<std::string>& words_;
  std::size_t index_ = 0;
  bool optionsEnded_ = false;
};

}  // namespace

std::optional<Request> requestFromArguments(const std::vector<std::string>& words,
                                            std::string& mistake) {
  Request request;
  if (words.size() == 1 && (words[0] == "--help" || words[0] == "-h")) return request;
  if (words.size() == 1 && words[0] == "--version") {
    request.command = Request::Command::Version;
    return request;
  }
  request.command = Request::Command::Scale;
  if (Reader(words).read(request)) return request;
  mistake = "see sips --help for the usage";
  return std::nullopt;
}

}  // namespace tavrin::sips
