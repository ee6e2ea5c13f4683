#include "tests/support/TreeBuilder.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>

#include "platform/linux/FileDescriptor.h"

namespace tavrin::testing {
namespace {

void require(bool succeeded, const std::string& path) {
  if (!succeeded) throw std::system_error(errno, std::generic_category(), path);
}

void append16(std::string& bytes, unsigned value) {
  bytes.push_back(static_cast<char>(value & 0xff));
  bytes.push_back(static_cast<char>(value >> 8 & 0xff));
}

void append32(std::string& bytes, std::uint32_t value) {
  append16(bytes, value & 0xffff);
  append16(bytes, value >> 16);
}

/// The kernel's form of an access control list (linux/posix_acl_xattr.h).
std::string listGrantingAll(uid_t user) {
  constexpr std::uint32_t noId = 0xffffffff;
  std::string bytes;
  append32(bytes, 2);
  const auto entry = [&bytes](unsigned tag, unsigned rights, std::uint32_t id) {
    append16(bytes, tag);
    append16(bytes, rights);
    append32(bytes, id);
  };
  entry(0x01, 6, noId);
  entry(0x02, 7, user);
  entry(0x04, 4, noId);
  entry(0x10, 7, noId);
  entry(0x20, 0, noId);
  return bytes;
}

}  // namespace

TreeBuilder& TreeBuilder::folder(const std::string& path, mode_t mode) {
  require(::mkdir(at(path).c_str(), 0700) == 0 && ::chmod(at(path).c_str(), mode) == 0, at(path));
  return *this;
}

TreeBuilder& TreeBuilder::file(const std::string& path, const std::string& contents, mode_t mode) {
  const FileDescriptor file(
      ::open(at(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  require(static_cast<bool>(file), at(path));
  const ssize_t written = ::write(file.get(), contents.data(), contents.size());
  require(written == static_cast<ssize_t>(contents.size()), at(path));
  require(::fchmod(file.get(), mode) == 0, at(path));
  return *this;
}

TreeBuilder& TreeBuilder::sparseFile(const std::string& path, off_t size, off_t offset,
                                     const std::string& contents) {
  file(path, "");
  const FileDescriptor file(::open(at(path).c_str(), O_WRONLY | O_CLOEXEC));
  require(file && ::ftruncate(file.get(), size) == 0, at(path));
  const ssize_t written = ::pwrite(file.get(), contents.data(), contents.size(), offset);
  require(written == static_cast<ssize_t>(contents.size()), at(path));
  return *this;
}

TreeBuilder& TreeBuilder::symbolicLink(const std::string& path, const std::string& target) {
  require(::symlink(target.c_str(), at(path).c_str()) == 0, at(path));
  return *this;
}

TreeBuilder& TreeBuilder::hardLink(const std::string& path, const std::string& existing) {
  require(::link(at(existing).c_str(), at(path).c_str()) == 0, at(path));
  return *this;
}

TreeBuilder& TreeBuilder::pipe(const std::string& path, mode_t mode) {
  require(::mkfifo(at(path).c_str(), 0600) == 0 && ::chmod(at(path).c_str(), mode) == 0, at(path));
  return *this;
}

TreeBuilder& TreeBuilder::attribute(const std::string& path, const std::string& name,
                                    const std::string& value) {
  require(::lsetxattr(at(path).c_str(), name.c_str(), value.data(), value.size(), 0) == 0,
          at(path));
  return *this;
}

TreeBuilder& TreeBuilder::accessList(const std::string& path, const std::string& kind, uid_t user) {
  return attribute(path, "system.posix_acl_" + kind, listGrantingAll(user));
}

TreeBuilder& TreeBuilder::modified(const std::string& path, time_t seconds, long nanoseconds) {
  const std::array<timespec, 2> times = {timespec{seconds, nanoseconds},
                                         timespec{seconds, nanoseconds}};
  require(::utimensat(AT_FDCWD, at(path).c_str(), times.data(), AT_SYMLINK_NOFOLLOW) == 0,
          at(path));
  return *this;
}

TreeBuilder& TreeBuilder::nestedFolders(const std::string& path, int levels,
                                        const std::string& name) {
  folder(path);
  FileDescriptor current(::open(at(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  for (int level = 0; level < levels; ++level) {
    require(::mkdirat(current.get(), name.c_str(), 0755) == 0, at(path));
    current =
        FileDescriptor(::openat(current.get(), name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    require(static_cast<bool>(current), at(path));
  }
  const FileDescriptor innermost(
      ::openat(current.get(), "innermost", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  require(innermost && ::write(innermost.get(), "deep", 4) == 4, at(path));
  return *this;
}

void buildEveryKind(const std::string& root) {
  TreeBuilder tree(root);
  tree.folder("folder").folder("folder/inner").folder("empty").folder("shared", 03775);
  tree.file("plain", "contents").file("folder/inner/plain", "other").file("empty file", "");
  tree.file("run", "#!/bin/sh\n", 04755).file("secret", "mine", 0400);
  tree.file("large", std::string(700'000, 'x')).sparseFile("holes", 4 << 20, 1 << 20, "island");
  tree.sparseFile("all hole", 64 << 10, 0, "");
  tree.file(std::string(255, 'n'), "long name").file("new\nline", "odd").file("-dash", "odd");
  tree.file("\xff\xfe", "no text").file("quote'\"", "odd").file(".hidden", "odd");
  tree.symbolicLink("link", "plain").symbolicLink("dangling", "/nowhere/at all");
  tree.symbolicLink("folder link", "folder");
  tree.pipe("pipe", 0640).pipe("folder/pipe");
  tree.hardLink("folder/inner/twin", "plain").hardLink("folder/pipe twin", "pipe");
  tree.attribute("plain", "user.comment", "a comment").attribute("folder", "user.empty", "");
  tree.attribute("large", "user.big", std::string(2000, 'b'));
  tree.accessList("run", "access", 12345).accessList("folder/inner", "default", 12345);
  tree.modified("plain", 1'000'000'000, 123'456'789).modified("link", 1'100'000'000, 1);
  tree.modified("pipe", 1'200'000'000, 999'999'999).modified("folder/inner", 900'000'000, 5);
  tree.modified("folder", 800'000'000, 7);
}

}  // namespace tavrin::testing
