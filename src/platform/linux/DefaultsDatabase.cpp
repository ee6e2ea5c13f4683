#include "platform/linux/DefaultsDatabase.h"

#include <algorithm>
#include <utility>

#include "platform/linux/PropertyListFormats.h"

namespace tavrin {

namespace {

std::string_view asText(const PropertyList::Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

}  // namespace

DefaultsDatabase::DefaultsDatabase(std::string folder, Log& log,
                                   std::function<void()> startedAfresh,
                                   std::shared_ptr<KnownLargeData> known)
    : log_(log),
      connection_(std::move(folder), log, std::move(startedAfresh)),
      largeData_(connection_, std::move(known)) {}

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

DefaultsDatabase::Entry* DefaultsDatabase::cachedEntry(const std::string& key) {
  connection_.ensureCurrent();
  refreshCache();
  const auto found = cache_.find(key);
  return found == cache_.end() ? nullptr : &found->second;
}

DefaultsDatabase::Entry* DefaultsDatabase::entryInTransaction(const std::string& key) {
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
  const std::string_view encoded = query.bytes(1);
  entry.encoded.assign(encoded.begin(), encoded.end());
  auto uses = largeData_.uses(query.integer(0));
  if (uses) entry.largeData = std::move(*uses);
  return uses.has_value();
}

std::optional<PropertyList> DefaultsDatabase::decode(const Entry& entry,
                                                     const LargeDataOfUse& largeData) {
  const auto resolve = [&](std::uint32_t number) -> DefaultsLargeData::Bytes {
    return number < entry.largeData.size() ? largeData(entry.largeData[number]) : nullptr;
  };
  return propertyListFromBinary(entry.encoded.data(), entry.encoded.size(), resolve);
}

std::optional<PropertyList> DefaultsDatabase::valueInMemory(const std::string& key, Entry& entry) {
  const auto held = [this](const auto& use) { return largeData_.held(use); };
  if (!entry.largeData.empty()) return decode(entry, held);
  if (!entry.isDecoded && entry.isPresent) {
    entry.value = decode(entry, held);
    if (!entry.value) log_.write("the setting \"" + key + "\" in " + folder() + " is unreadable");
  }
  entry.isDecoded = true;
  return entry.value;
}

std::optional<PropertyList> DefaultsDatabase::value(const std::string& key) {
  if (Entry* cached = cachedEntry(key)) {
    auto value = valueInMemory(key, *cached);
    if (value || cached->largeData.empty()) return value;
  }
  std::optional<PropertyList> value;
  connection_.read([&] {
    Entry* entry = entryInTransaction(key);
    if (entry == nullptr) return false;
    value = entry->largeData.empty()
                ? valueInMemory(key, *entry)
                : decode(*entry, [this](const auto& use) { return largeData_.read(use); });
    return true;
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
  std::string text(asText(entry->encoded));
  for (const auto& use : entry->largeData) text += use.digest;
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
  encoded.key = key;
  const auto setLargeAside =
      [&encoded](const DefaultsLargeData::Bytes& data) -> std::optional<std::uint32_t> {
    if (data->size() < largeDataSize) return std::nullopt;
    encoded.largeData.push_back(data);
    return static_cast<std::uint32_t>(encoded.largeData.size() - 1);
  };
  auto list = binaryFromPropertyList(value, setLargeAside);
  if (!list) {
    log_.write("the setting \"" + key + "\" in " + folder() + " is too large to store");
    return std::nullopt;
  }
  encoded.entry.isPresent = true;
  encoded.entry.encoded = std::move(*list);
  for (const auto& data : encoded.largeData) {
    encoded.entry.largeData.push_back({0, largeData_.digestOf(data)});
  }
  return encoded;
}

bool DefaultsDatabase::write(const DefaultsConnection::Work& work) {
  const bool written = connection_.write(work);
  if (written) ++ownCommits_;
  return written;
}

bool DefaultsDatabase::set(const PropertyList& value, const std::string& key) {
  auto encoded = encode(value, key);
  if (!encoded) return false;
  std::vector<EncodedValue> values;
  values.push_back(std::move(*encoded));
  return storeAll(std::move(values));
}

bool DefaultsDatabase::set(const PropertyList::Dictionary& values) {
  std::vector<EncodedValue> encoded;
  for (const auto& [key, value] : values) {
    auto list = encode(value, key);
    if (!list) return false;
    encoded.push_back(std::move(*list));
  }
  return storeAll(std::move(encoded));
}

bool DefaultsDatabase::storeAll(std::vector<EncodedValue> values) {
  const bool written = write([&] {
    return std::all_of(values.begin(), values.end(), [this](auto& value) { return store(value); });
  });
  if (!written) return false;
  for (auto& value : values) cache_.insert_or_assign(value.key, std::move(value.entry));
  return true;
}

bool DefaultsDatabase::setIfAbsent(const PropertyList& value, const std::string& key) {
  auto encoded = encode(value, key);
  if (!encoded) return false;
  bool isAbsent = false;
  return write([&] {
           isAbsent = !settingWithKey(key);
           return !isAbsent || store(*encoded);
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
           return largeData_.replaceUses(*setting, {}) && run(query.bind(1, *setting));
         }) &&
         isPresent;
}

bool DefaultsDatabase::store(EncodedValue& value) {
  cache_.erase(value.key);
  const auto setting = storeSetting(value);
  if (!setting) return false;
  auto& uses = value.entry.largeData;
  for (std::size_t index = 0; index < uses.size(); ++index) {
    const auto id = largeData_.store(*value.largeData[index], uses[index].digest);
    if (!id) return false;
    uses[index].id = *id;
  }
  return largeData_.replaceUses(*setting, uses);
}

std::optional<std::int64_t> DefaultsDatabase::storeSetting(const EncodedValue& value) {
  SqliteQuery query = connection_.query(
      "INSERT INTO setting(key, value) VALUES(?1, ?2) "
      "ON CONFLICT(key) DO UPDATE SET value=excluded.value RETURNING id");
  query.bind(1, value.key).bind(2, asText(value.entry.encoded));
  if (!query.nextRow()) {
    connection_.succeeded(query);
    return std::nullopt;
  }
  const std::int64_t id = query.integer(0);
  return run(query) ? std::optional(id) : std::nullopt;
}

std::optional<std::int64_t> DefaultsDatabase::settingWithKey(const std::string& key) {
  SqliteQuery query = connection_.query("SELECT id FROM setting WHERE key=?1");
  query.bind(1, key);
  if (query.nextRow()) return query.integer(0);
  connection_.succeeded(query);
  return std::nullopt;
}

}  // namespace tavrin
