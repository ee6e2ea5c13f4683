#include "platform/linux/DefaultsReader.h"

#include <glib.h>
#include <sys/stat.h>

#include <utility>
#include <vector>

#include "platform/linux/PropertyListFormats.h"

namespace tavrin {

namespace {

constexpr int patienceInMilliseconds = 20;

/// Precedes a digest that stands in the place of data.
constexpr std::string_view digestMark = "sha256:";
constexpr std::size_t digestSize = 32;

PropertyList::Data standIn(std::string_view digest) {
  PropertyList::Data data(digestMark.begin(), digestMark.end());
  data.insert(data.end(), digest.begin(), digest.end());
  return data;
}

std::string hexadecimal(std::string_view bytes) {
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += digits[value >> 4U];
    text += digits[value & 15U];
  }
  return text;
}

}  // namespace

DefaultsReader::DefaultsReader(std::string folder, Log& log)
    : file_(std::move(folder)), log_(log) {}

std::string DefaultsReader::digestOf(const PropertyList::Data& data) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  if (text.starts_with(digestMark) && text.size() == digestMark.size() + digestSize) {
    return hexadecimal(text.substr(digestMark.size()));
  }
  char* digest = g_compute_checksum_for_data(G_CHECKSUM_SHA256, data.data(), data.size());
  std::string result(digest);
  g_free(digest);
  return result;
}

bool DefaultsReader::hasChanged() {
  if (seenFile_ != file_.identity()) return true;
  if (!connection_.isOpen()) return times() != seenTimes_;
  return seenLog_ != log() || version() != seenVersion_;
}

/// Whatever part of this process reads the database's file takes the connection's lock away (POSIX,
/// fcntl), so that others may remove the files which the connection goes on to look at.
std::string DefaultsReader::log() const {
  std::string text;
  for (const char* suffix : {"-wal", "-shm"}) {
    struct stat status {};
    const bool isThere = ::stat((file_.path() + suffix).c_str(), &status) == 0;
    text += isThere ? std::to_string(status.st_ino) + ' ' : "none ";
  }
  return text;
}

std::string DefaultsReader::times() const {
  struct stat status {};
  if (::stat(file_.path().c_str(), &status) != 0) return {};
  return std::to_string(status.st_size) + ' ' + std::to_string(status.st_mtim.tv_sec) + '.' +
         std::to_string(status.st_mtim.tv_nsec);
}

std::int64_t DefaultsReader::version() {
  SqliteQuery query = connection_.query("PRAGMA data_version");
  return query.nextRow() ? query.integer(0) : -1;
}

bool DefaultsReader::open() {
  const DefaultsFile::Identity identity = file_.identity();
  if (connection_.isOpen() && seenFile_ == identity && seenLog_ == log()) return true;
  connection_.close();
  seenFile_ = identity;
  seenTimes_ = times();
  if (identity == DefaultsFile::Identity() || identity.isEmpty) return false;
  const int status = connection_.open(file_.path(), SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX);
  if (status != SQLITE_OK) {
    log_.write("open " + file_.path() + ": " + sqlite3_errstr(status));
    return false;
  }
  sqlite3_busy_timeout(connection_.handle(), patienceInMilliseconds);
  return true;
}

std::optional<PropertyList::Dictionary> DefaultsReader::read(std::span<const char* const> keys) {
  if (!open()) return PropertyList::Dictionary();
  // Before the values: what is committed in between will count as a change.
  const std::int64_t versionBefore = version();
  auto values = readOpened(keys);
  const int status = sqlite3_errcode(connection_.handle());
  connection_.execute("ROLLBACK");
  if (values) {
    seenVersion_ = versionBefore;
    seenLog_ = log();
    return values;
  }
  const bool isBusy = status == SQLITE_BUSY || status == SQLITE_LOCKED;
  if (!isBusy) log_.write("read " + file_.path() + ": " + sqlite3_errstr(status));
  connection_.close();
  if (!isBusy) return PropertyList::Dictionary();
  seenFile_.reset();
  return std::nullopt;
}

std::optional<PropertyList::Dictionary> DefaultsReader::readOpened(
    std::span<const char* const> keys) {
  if (connection_.execute("BEGIN") != SQLITE_OK) return std::nullopt;
  PropertyList::Dictionary values;
  for (const char* key : keys) {
    auto entry = value(key);
    const int status = sqlite3_errcode(connection_.handle());
    if (status != SQLITE_OK && status != SQLITE_DONE && status != SQLITE_ROW) return std::nullopt;
    if (entry) values.emplace(key, std::move(*entry));
  }
  return values;
}

std::optional<PropertyList> DefaultsReader::value(const char* key) {
  SqliteQuery setting = connection_.query("SELECT id, value FROM setting WHERE key=?1");
  if (!setting.bind(1, std::string_view(key)).nextRow()) return std::nullopt;
  SqliteQuery uses = connection_.query(
      "SELECT hash FROM large_data_use JOIN large_data ON large_data.id=data WHERE setting=?1 "
      "ORDER BY position");
  std::vector<std::shared_ptr<const PropertyList::Data>> digests;
  for (uses.bind(1, setting.integer(0)); uses.nextRow();) {
    digests.push_back(std::make_shared<const PropertyList::Data>(standIn(uses.bytes(0))));
  }
  if (uses.failed()) return std::nullopt;
  const std::string_view encoded = setting.bytes(1);
  return propertyListFromBinary(
      reinterpret_cast<const std::uint8_t*>(encoded.data()), encoded.size(),
      [&digests](std::uint32_t number) -> std::shared_ptr<const PropertyList::Data> {
        return number < digests.size() ? digests[number] : nullptr;
      });
}

}  // namespace tavrin
