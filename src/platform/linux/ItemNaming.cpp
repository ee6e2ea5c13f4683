#include "platform/linux/ItemNaming.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>

namespace tavrin {
namespace {

constexpr std::string_view hiddenPrefix = ".tavrin-";
constexpr std::size_t randomDigits = 16;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

std::error_code exchangeLink(int fromFolder, const std::string& from, int toFolder,
                             const std::string& to) {
  if (::linkat(fromFolder, from.c_str(), toFolder, to.c_str(), 0) != 0) return lastError();
  if (::unlinkat(fromFolder, from.c_str(), 0) == 0) return {};
  const std::error_code cause = lastError();
  ::unlinkat(toFolder, to.c_str(), 0);
  return cause;
}

std::error_code renameOverOwnFolder(int fromFolder, const std::string& from, int toFolder,
                                    const std::string& to) {
  if (::mkdirat(toFolder, to.c_str(), S_IRWXU) != 0) return lastError();
  if (::renameat(fromFolder, from.c_str(), toFolder, to.c_str()) == 0) return {};
  const std::error_code cause = lastError();
  ::unlinkat(toFolder, to.c_str(), AT_REMOVEDIR);
  return cause;
}

}  // namespace

std::string randomHiddenName(std::string_view kind) {
  std::uint64_t number = 0;
  // Below 256 bytes the call neither fails nor is cut short once the system has started.
  if (::getrandom(&number, sizeof(number), 0) < 0) number = static_cast<std::uint64_t>(::getpid());
  std::array<char, randomDigits + 1> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(number));
  return std::string(hiddenPrefix).append(digits.data()).append(".").append(kind);
}

bool isRandomHiddenName(std::string_view name, std::string_view kind) {
  if (!name.starts_with(hiddenPrefix)) return false;
  name.remove_prefix(hiddenPrefix.size());
  if (name.size() != randomDigits + 1 + kind.size() || !name.ends_with(kind)) return false;
  const std::string_view digits = name.substr(0, randomDigits);
  return name[randomDigits] == '.' &&
         digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::error_code renameToFreeName(int fromFolder, const std::string& from, int toFolder,
                                 const std::string& to) {
  if (::renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  const std::error_code cause = lastError();
  if (errno != EINVAL && errno != ENOSYS) return cause;
  struct stat status = {};
  if (::fstatat(fromFolder, from.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return lastError();
  return S_ISDIR(status.st_mode) ? renameOverOwnFolder(fromFolder, from, toFolder, to)
                                 : exchangeLink(fromFolder, from, toFolder, to);
}

std::error_code renameToNameOrNext(int folder, const std::string& from, std::string& name) {
  constexpr std::size_t roomForNumber = 240;
  constexpr int mostAttempts = 10'000;
  std::error_code cause = renameToFreeName(folder, from, folder, name);
  for (int number = 2; cause == std::errc::file_exists && number < mostAttempts; ++number) {
    const std::string next = name.substr(0, roomForNumber) + " " + std::to_string(number);
    cause = renameToFreeName(folder, from, folder, next);
    if (!cause) name = next;
  }
  return cause;
}

FileDescriptor openNamelessFile(int folder, unsigned mode) {
  return FileDescriptor(::openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
}

std::error_code nameNamelessFile(int file, int folder, const std::string& name) {
  const std::string path = "/proc/self/fd/" + std::to_string(file);
  if (::linkat(AT_FDCWD, path.c_str(), folder, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return {};
  return lastError();
}

}  // namespace tavrin
