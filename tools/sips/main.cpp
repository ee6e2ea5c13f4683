#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string_view>

#include "icons/Files.h"
#include "icons/Version.h"
#include "sips/Arguments.h"
#include "sips/ImageSource.h"
#include "sips/ScaledImage.h"

namespace tavrin::sips {

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

// Twenty times what the largest photograph takes. A drawing of a few bytes can ask for years.
constexpr rlim_t mostProcessorSeconds = 60;

void giveUp(int /*signal*/) {
  constexpr std::string_view message = "sips: the image takes too long\n";
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message.data(), message.size());
  ::_exit(failed);
}

/// A lower limit that the caller has set stays.
void limitTime() {
  std::signal(SIGXCPU, giveUp);
  rlimit limit{};
  if (::getrlimit(RLIMIT_CPU, &limit) != 0) return;
  limit.rlim_cur = std::min(limit.rlim_cur, mostProcessorSeconds);
  ::setrlimit(RLIMIT_CPU, &limit);
}

/// The file to write: a folder that is there takes it under the image's name.
std::string outputFile(const Request& request) {
  struct stat status {};
  if (::stat(request.output.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
    return request.output;
  }
  return request.output + "/" + request.input.substr(request.input.rfind('/') + 1);
}

bool areSameFile(const std::string& left, const std::string& right) {
  struct stat leftStatus {};
  struct stat rightStatus {};
  return ::stat(left.c_str(), &leftStatus) == 0 && ::stat(right.c_str(), &rightStatus) == 0 &&
         leftStatus.st_dev == rightStatus.st_dev && leftStatus.st_ino == rightStatus.st_ino;
}

bool scale(const Request& request, std::string& mistake) {
  const std::string output = outputFile(request);
  if (areSameFile(request.input, output)) {
    mistake = "the result would replace the image";
    return false;
  }
  const auto source = sourceOf(request.input, mistake);
  if (!source) return false;
  const auto png = scaledImage(*source, request.width, request.height, mistake);
  if (png) return icons::replaceFile(output, *png, mistake);
  mistake = request.input + ": " + mistake;
  return false;
}

int run(const std::vector<std::string>& words) {
  std::string mistake;
  const auto request = requestFromArguments(words, mistake);
  if (!request) {
    icons::complain("sips", mistake);
    return wrongUsage;
  }
  if (request->command == Request::Command::Help) return std::fputs(usage, stdout) < 0;
  if (request->command == Request::Command::Version) {
    return std::printf("sips %s\n", icons::version()) < 0;
  }
  limitTime();
  if (scale(*request, mistake)) return 0;
  icons::complain("sips", mistake);
  return failed;
}

}  // namespace

}  // namespace tavrin::sips

int main(int argumentCount, char** arguments) {
  return tavrin::sips::run({arguments + 1, arguments + argumentCount});
}
