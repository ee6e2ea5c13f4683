#include "icons/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <system_error>

namespace tavrin::icons {

namespace {

constexpr mode_t everybodysChoice = 0666;

/// Closes what it holds.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  explicit operator bool() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  bool close() {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    return descriptor < 0 || ::close(descriptor) == 0;
  }

 private:
  int descriptor_;
};

bool writeAll(int descriptor, BytesView bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool readAll(int descriptor, Bytes& bytes) {
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t size = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return false;
    if (size == 0) break;
    filled += static_cast<std::size_t>(size);
  }
  bytes.resize(filled);
  return true;
}

}  // namespace

std::string reasonFor(const char* what, const std::string& path) {
  const int cause = errno;
  return std::string(what) + " " + path + ": " + std::generic_category().message(cause);
}

std::optional<Bytes> readFile(const std::string& path, std::size_t mostBytes,
                              std::string& mistake) {
  // Without waiting for somebody to write to a pipe.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) {
    mistake = reasonFor("cannot open", path);
    return std::nullopt;
  }
  if (!S_ISREG(status.st_mode)) {
    mistake = path + " is no file";
    return std::nullopt;
  }
  if (static_cast<std::uintmax_t>(status.st_size) > mostBytes) {
    mistake = path + " has more than " + std::to_string(mostBytes) + " bytes";
    return std::nullopt;
  }
  Bytes bytes(static_cast<std::size_t>(status.st_size), '\0');
  if (readAll(file.get(), bytes)) return bytes;
  mistake = reasonFor("cannot read", path);
  return std::nullopt;
}

std::string temporaryPathBeside(const std::string& path) {
  std::random_device random;
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), ".tavrin-icons-%08x%08x", random(), random());
  return path.substr(0, path.rfind('/') + 1) + name.data();
}

bool replaceFile(const std::string& path, BytesView bytes, std::string& mistake) {
  const std::string temporary = temporaryPathBeside(path);
  Descriptor file(
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, everybodysChoice));
  if (!file) {
    mistake = reasonFor("cannot write", path);
    return false;
  }
  if (writeAll(file.get(), bytes) && file.close() &&
      ::rename(temporary.c_str(), path.c_str()) == 0) {
    return true;
  }
  mistake = reasonFor("cannot write", path);
  ::unlink(temporary.c_str());
  return false;
}

void complain(const char* tool, const std::string& message) {
  std::string line = std::string(tool) + ": " + message;
  std::replace_if(
      line.begin(), line.end(),
      [](char character) {
        return static_cast<unsigned char>(character) < ' ' || character == '\x7f';
      },
      '?');
  line += '\n';
  writeAll(STDERR_FILENO, line);
}

}  // namespace tavrin::icons
