#include "tests/support/FakeSecurityScope.h"

#include <charconv>
#include <string_view>
#include <utility>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

constexpr std::string_view bookmarkMark = "bookmark";
constexpr std::size_t sealLength = 16;

/// Ties the content to the key well enough that a changed byte or another key shows (FNV-1a).
std::string sealOf(std::string_view key, std::string_view content) {
  std::uint64_t hash = 14695981039346656037ULL;
  for (const std::string_view part : {key, content}) {
    for (const char character : part) {
      hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211ULL;
    }
    hash = (hash ^ part.size()) * 1099511628211ULL;
  }
  std::string digits(sealLength, '0');
  for (char& digit : digits) {
    digit = static_cast<char>('a' + (hash & 15U));
    hash >>= 4U;
  }
  return digits;
}

}  // namespace

FakeSecurityScope::FakeSecurityScope(FakeFileManager& fileManager, std::string userKey)
    : fileManager_(fileManager), userKey_(std::move(userKey)) {}

PropertyList::Data FakeSecurityScope::seal(const std::string& content) const {
  const std::string sealed = sealOf(userKey_, content) + content;
  return {sealed.begin(), sealed.end()};
}

std::optional<std::uint64_t> FakeSecurityScope::grantedIdentity(const std::string& realPath) const {
  const auto grant = granted_.find(realPath);
  if (grant != granted_.end()) return grant->second;
  return isStarted(realPath) ? fileManager_.identityOfItem(realPath) : std::nullopt;
}

Result<PropertyList::Data> FakeSecurityScope::bookmarkDataForURL(const FileURL& url) {
  const std::lock_guard lock(mutex_);
  const auto failure = [&url](std::errc cause) {
    return SystemError{"make bookmark", url.path(), std::make_error_code(cause)};
  };
  if (const auto cause = std::exchange(nextFault_, std::nullopt)) return failure(*cause);
  const std::string realPath = fileManager_.resolvingSymlinksInPath(url.path());
  if (isLedElsewhere(url.path())) return failure(std::errc::permission_denied);
  const auto identity = fileManager_.identityOfItem(realPath);
  if (!identity) return failure(std::errc::no_such_file_or_directory);
  if (grantedIdentity(realPath) != identity) return failure(std::errc::permission_denied);
  return seal(std::string(bookmarkMark) + std::to_string(*identity) + realPath);
}

ResolvedBookmark FakeSecurityScope::urlByResolvingBookmarkData(const PropertyList::Data& bookmark) {
  const std::lock_guard lock(mutex_);
  if (bookmark.size() < sealLength + bookmarkMark.size()) return {};
  const std::string content(bookmark.begin() + sealLength, bookmark.end());
  if (seal(content) != bookmark || !content.starts_with(bookmarkMark)) return {};
  const std::size_t slash = content.find('/');
  std::uint64_t identity = 0;
  std::from_chars(content.data() + bookmarkMark.size(), content.data() + slash, identity);
  const std::string path = content.substr(slash);
  const bool isMoved = fileManager_.resolvingSymlinksInPath(path) != path;
  const auto present = fileManager_.identityOfItem(path);
  if (!present || isMoved) return {};
  granted_[path] = *present;
  return {FileURL::fileURLWithPath(path), *present != identity};
}

bool FakeSecurityScope::startAccessingSecurityScopedResource(const FileURL& url) {
  const std::lock_guard lock(mutex_);
  const std::string realPath = fileManager_.resolvingSymlinksInPath(url.path());
  const auto present = fileManager_.identityOfItem(realPath);
  if (isLedElsewhere(url.path()) || !present || grantedIdentity(realPath) != present) return false;
  started_[realPath] = *present;
  return true;
}

bool FakeSecurityScope::grantByPanel(const std::string& path) {
  const std::lock_guard lock(mutex_);
  const std::string realPath = fileManager_.resolvingSymlinksInPath(path);
  const auto present = fileManager_.identityOfItem(realPath);
  if (!present) return false;
  granted_[realPath] = *present;
  started_[realPath] = *present;
  return true;
}

void FakeSecurityScope::grantPlaceByPanel(const std::string& path) {
  const std::lock_guard lock(mutex_);
  const std::string folder = fileManager_.resolvingSymlinksInPath(deletingLastPathComponent(path));
  const auto present = fileManager_.identityOfItem(folder);
  if (present) places_[appendingPathComponent(folder, lastPathComponent(path))] = *present;
}

void FakeSecurityScope::enforce() {
  fileManager_.enforceScopes([this](const std::string& realPath) { return covers(realPath); });
  fileManager_.allowCreation([this](const std::string& realPath) {
    const std::lock_guard lock(mutex_);
    const auto place = places_.find(realPath);
    return place != places_.end() &&
           fileManager_.identityOfItem(deletingLastPathComponent(realPath)) == place->second;
  });
}

bool FakeSecurityScope::isStarted(const std::string& realPath) const {
  for (const auto& [path, identity] : started_) {
    if (isPathAtOrBelow(realPath, path) && fileManager_.identityOfItem(path) == identity) {
      return true;
    }
  }
  return false;
}

/// Whether a link came into the path of a granted URL.
bool FakeSecurityScope::isLedElsewhere(const std::string& path) const {
  return granted_.contains(path) && fileManager_.resolvingSymlinksInPath(path) != path;
}

bool FakeSecurityScope::covers(const std::string& realPath) const {
  const std::lock_guard lock(mutex_);
  return isStarted(realPath);
}

std::vector<std::string> FakeSecurityScope::startedPaths() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> paths;
  for (const auto& grant : started_) paths.push_back(grant.first);
  return paths;
}

void FakeSecurityScope::failNextBookmark(std::errc cause) {
  const std::lock_guard lock(mutex_);
  nextFault_ = cause;
}

}  // namespace tavrin
