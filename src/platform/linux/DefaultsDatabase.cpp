#include "platform/linux/DefaultsDatabase.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <set>

#include "platform/linux/PropertyListFormats.h"

namespace tavrin {

namespace {

std::string_view asText(const PropertyList::Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

/// Finds equal data quickly; the bytes are compared afterwards. The file stays on its machine, so
/// the order of bytes in a word does not matter.
std::int64_t hashOf(const PropertyList::Data& data) {
  constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;
  constexpr std::size_t laneCount = 4;
  std::array<std::uint64_t, laneCount> lanes{1, 2, 3, 4};
  std::size_t position = 0;
  std::array<std::uint64_t, laneCount> words{};
  const auto mix = [&] {
    for (std::size_t lane = 0; lane < laneCount; ++lane) {
      lanes[lane] = std::rotl((lanes[lane] ^ words[lane]) * multiplier, 29);
    }
  };
  for (; data.size() - position >= sizeof words; position += sizeof words) {
    std::memcpy(words.data(), data.data() + position, sizeof words);
    mix();
  }
  words = {};
  std::memcpy(words.data(), data.data() + position, data.size() - position);
  mix();
  std::uint64_t hash = data.size();
  for (const std::uint64_t lane : lanes) hash = std::rotl((hash ^ lane) * multiplier, 31);
  return static_cast<std::int64_t>(hash);
}

}  // namespace

DefaultsDatabase::DefaultsDatabase(std::string folder, Log& log,
                                   std::function<void()> startedAfresh)
    : log_(log), connection_(std::move(folder), log, std::move(startedAfresh)) {}

bool DefaultsDatabase::run(SqliteQuery& query) {
  query.run();
  return connection_.succeeded(query);
}

std::int64_t DefaultsDatabase::foreignCommits() {
  SqliteQuery version = connection_.query("PRAGMA data_version");
  return version.nextRow() ? version.integer(0) : -1;
}

DefaultsDatabase::Stamp DefaultsDatabase::stamp() {
  connection_.ensureCurrent();
  return {connection_.generation(), ownCommits_, foreignCommits()};
}

void DefaultsDatabase::refreshCache() {
  const std::int64_t current = foreignCommits();
  if (connection_.generation() == cachedGeneration_ && current == cachedForeignCommits_) return;
  cache_.clear();
  cachedGeneration_ = connection_.generation();
  cachedForeignCommits_ = current;
}

const DefaultsDatabase::Entry* DefaultsDatabase::cachedEntry(const std::string& key) {
  connection_.ensureCurrent();
  refreshCache();
  const auto found = cache_.find(key);
  return found == cache_.end() ? nullptr : &found->second;
}

const DefaultsDatabase::Entry* DefaultsDatabase::entryInTransaction(const std::string& key) {
  refreshCache();
  const auto [found, isNew] = cache_.try_emplace(key);
  if (!isNew || load(key, found->second)) return &found->second;
  cache_.erase(found);
  return nullptr;
}

bool DefaultsDatabase::load(const std::string& key, Entry& entry) {
  SqliteQuery query = connection_.query("SELECT id, value FROM setting WHERE key=?1");
  query.bind(1, key);
  entry.isPresent = query.nextRow();
  if (!connection_.succeeded(query)) return false;
  if (!entry.isPresent) return true;
  entry.encoded = query.bytes(1);
  if (!loadLargeData(query.integer(0), entry)) return false;
  if (!entry.largeData.empty()) return true;
  entry.value = decode(entry);
  if (!entry.value) log_.write("the setting \"" + key + "\" in " + folder() + " is unreadable");
  return true;
}

bool DefaultsDatabase::loadLargeData(std::int64_t setting, Entry& entry) {
  SqliteQuery query = connection_.query(
      "SELECT large_data.id, hash FROM large_data_use JOIN large_data ON large_data.id=data "
      "WHERE setting=?1 ORDER BY position");
  query.bind(1, setting);
  while (query.nextRow()) entry.largeData.push_back({query.integer(0), query.integer(1)});
  return connection_.succeeded(query);
}

std::optional<PropertyList> DefaultsDatabase::decode(const Entry& entry) {
  const auto resolve = [this, &entry](std::uint32_t number) -> std::optional<PropertyList::Data> {
    if (number >= entry.largeData.size()) return std::nullopt;
    return largeData(entry.largeData[number].id);
  };
  return propertyListFromBinary(reinterpret_cast<const std::uint8_t*>(entry.encoded.data()),
                                entry.encoded.size(), resolve);
}

std::optional<PropertyList::Data> DefaultsDatabase::largeData(std::int64_t id) {
  SqliteQuery query = connection_.query("SELECT bytes FROM large_data WHERE id=?1");
  if (!query.bind(1, id).nextRow()) {
    connection_.succeeded(query);
    return std::nullopt;
  }
  const std::string_view bytes = query.bytes(0);
  return PropertyList::Data(bytes.begin(), bytes.end());
}

std::optional<PropertyList> DefaultsDatabase::value(const std::string& key) {
  if (const Entry* cached = cachedEntry(key); cached && cached->largeData.empty()) {
    return cached->value;
  }
  std::optional<PropertyList> value;
  connection_.read([&] {
    const Entry* entry = entryInTransaction(key);
    if (entry) value = entry->largeData.empty() ? entry->value : decode(*entry);
    return entry != nullptr;
  });
  return value;
}

std::optional<std::string> DefaultsDatabase::fingerprint(const std::string& key) {
  const Entry* entry = cachedEntry(key);
  if (!entry) {
    connection_.read([&] {
      entry = entryInTransaction(key);
      return entry != nullptr;
    });
  }
  if (!entry || !entry->isPresent) return std::nullopt;
  std::string text = entry->encoded;
  for (const LargeData& large : entry->largeData) text += " " + std::to_string(large.hash);
  return text;
}

std::vector<std::string> DefaultsDatabase::keys() {
  std::vector<std::string> names;
  connection_.read([&] {
    names.clear();
    SqliteQuery query = connection_.query("SELECT key FROM setting ORDER BY key");
    while (query.nextRow()) names.emplace_back(query.bytes(0));
    return connection_.succeeded(query);
  });
  return names;
}

std::optional<DefaultsDatabase::EncodedValue> DefaultsDatabase::encode(const PropertyList& value,
                                                                       const std::string& key) {
  EncodedValue encoded;
  const auto setLargeAside =
      [&encoded](const PropertyList::Data& data) -> std::optional<std::uint32_t> {
    if (data.size() < largeDataSize) return std::nullopt;
    encoded.largeData.push_back(&data);
    return static_cast<std::uint32_t>(encoded.largeData.size() - 1);
  };
  auto list = binaryFromPropertyList(value, setLargeAside);
  if (!list) {
    log_.write("the setting \"" + key + "\" in " + folder() + " is too large to store");
    return std::nullopt;
  }
  encoded.list = std::move(*list);
  return encoded;
}

bool DefaultsDatabase::write(const DefaultsConnection::Work& work) {
  const bool written = connection_.write(work);
  if (written) ++ownCommits_;
  return written;
}

bool DefaultsDatabase::set(const PropertyList::Dictionary& values) {
  std::vector<std::pair<const std::string*, EncodedValue>> encoded;
  for (const auto& [key, value] : values) {
    auto list = encode(value, key);
    if (!list) return false;
    encoded.emplace_back(&key, std::move(*list));
  }
  return write([&] {
    return std::all_of(encoded.begin(), encoded.end(), [this](const auto& setting) {
      return store(*setting.first, setting.second);
    });
  });
}

bool DefaultsDatabase::setIfAbsent(const PropertyList& value, const std::string& key) {
  const auto encoded = encode(value, key);
  if (!encoded) return false;
  bool isAbsent = false;
  return write([&] {
           isAbsent = !settingWithKey(key);
           return !isAbsent || store(key, *encoded);
         }) &&
         isAbsent;
}

bool DefaultsDatabase::remove(const std::string& key) {
  bool isPresent = false;
  return write([&] {
           const auto setting = settingWithKey(key);
           isPresent = setting.has_value();
           if (!isPresent) return true;
           cache_.erase(key);
           SqliteQuery query = connection_.query("DELETE FROM setting WHERE id=?1");
           return replaceUses(*setting, {}) && run(query.bind(1, *setting));
         }) &&
         isPresent;
}

bool DefaultsDatabase::store(const std::string& key, const EncodedValue& value) {
  cache_.erase(key);
  const auto setting = storeSetting(key, value);
  if (!setting) return false;
  std::vector<std::int64_t> data;
  for (const PropertyList::Data* bytes : value.largeData) {
    const auto id = storeLargeData(*bytes);
    if (!id) return false;
    data.push_back(*id);
  }
  return replaceUses(*setting, data);
}

std::optional<std::int64_t> DefaultsDatabase::storeSetting(const std::string& key,
                                                           const EncodedValue& value) {
  SqliteQuery query = connection_.query(
      "INSERT INTO setting(key, value) VALUES(?1, ?2) "
      "ON CONFLICT(key) DO UPDATE SET value=excluded.value RETURNING id");
  query.bind(1, key).bind(2, asText(value.list));
  if (!query.nextRow()) {
    connection_.succeeded(query);
    return std::nullopt;
  }
  const std::int64_t id = query.integer(0);
  return run(query) ? std::optional(id) : std::nullopt;
}

std::optional<std::int64_t> DefaultsDatabase::storeLargeData(const PropertyList::Data& data) {
  const std::int64_t hash = hashOf(data);
  SqliteQuery search = connection_.query("SELECT id FROM large_data WHERE hash=?1 AND bytes=?2");
  if (search.bind(1, hash).bind(2, asText(data)).nextRow()) return search.integer(0);
  if (!connection_.succeeded(search)) return std::nullopt;
  SqliteQuery insertion =
      connection_.query("INSERT INTO large_data(hash, bytes) VALUES(?1, ?2) RETURNING id");
  if (!insertion.bind(1, hash).bind(2, asText(data)).nextRow()) {
    connection_.succeeded(insertion);
    return std::nullopt;
  }
  const std::int64_t id = insertion.integer(0);
  return run(insertion) ? std::optional(id) : std::nullopt;
}

std::optional<std::int64_t> DefaultsDatabase::settingWithKey(const std::string& key) {
  SqliteQuery query = connection_.query("SELECT id FROM setting WHERE key=?1");
  query.bind(1, key);
  if (query.nextRow()) return query.integer(0);
  connection_.succeeded(query);
  return std::nullopt;
}

std::optional<std::vector<std::int64_t>> DefaultsDatabase::uses(std::int64_t setting) {
  SqliteQuery query =
      connection_.query("SELECT data FROM large_data_use WHERE setting=?1 ORDER BY position");
  query.bind(1, setting);
  std::vector<std::int64_t> data;
  while (query.nextRow()) data.push_back(query.integer(0));
  return connection_.succeeded(query) ? std::optional(std::move(data)) : std::nullopt;
}

bool DefaultsDatabase::replaceUses(std::int64_t setting, const std::vector<std::int64_t>& data) {
  const auto former = uses(setting);
  if (!former || *former == data) return former.has_value();
  {
    SqliteQuery removal = connection_.query("DELETE FROM large_data_use WHERE setting=?1");
    if (!run(removal.bind(1, setting))) return false;
  }
  for (std::size_t position = 0; position < data.size(); ++position) {
    SqliteQuery insertion =
        connection_.query("INSERT INTO large_data_use(setting, position, data) VALUES(?1, ?2, ?3)");
    insertion.bind(1, setting).bind(2, static_cast<std::int64_t>(position)).bind(3, data[position]);
    if (!run(insertion)) return false;
  }
  for (const std::int64_t id : std::set<std::int64_t>(former->begin(), former->end())) {
    SqliteQuery removal = connection_.query(
        "DELETE FROM large_data WHERE id=?1 AND NOT EXISTS"
        "(SELECT 1 FROM large_data_use WHERE data=?1)");
    if (!run(removal.bind(1, id))) return false;
  }
  return true;
}

}  // namespace tavrin
