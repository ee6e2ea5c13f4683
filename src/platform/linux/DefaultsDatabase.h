#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/PropertyList.h"
#include "platform/linux/DefaultsConnection.h"

namespace tavrin {

/// The stored values of one settings domain, on one thread.
///
/// Values are binary property lists in SQLite with a write-ahead log. Data of `largeDataSize` bytes
/// and more stands beside them, once for all its uses, so that rewriting a list leaves its images
/// alone. What was read stays in memory, without large data, until somebody commits.
class DefaultsDatabase {
 public:
  static constexpr std::size_t largeDataSize = 4096;

  /// See DefaultsConnection.
  DefaultsDatabase(std::string folder, Log& log, std::function<void()> startedAfresh);

  std::optional<PropertyList> value(const std::string& key);
  std::vector<std::string> keys();

  /// Each is one commit. Returns false, after a log line, when nothing was changed because of a
  /// failure.
  bool set(const PropertyList::Dictionary& values);
  /// Returns whether there was a value, which is gone.
  bool remove(const std::string& key);
  /// Returns whether the value was stored.
  bool setIfAbsent(const PropertyList& value, const std::string& key);

  bool synchronize() { return connection_.synchronize(); }

  /// Values with equal fingerprints are equal; nothing for an absent key.
  std::optional<std::string> fingerprint(const std::string& key);

  /// Differs after any commit, by whomever.
  struct Stamp {
    std::uint64_t generation = 0;
    std::uint64_t ownCommits = 0;
    std::int64_t foreignCommits = 0;
    bool operator==(const Stamp&) const = default;
  };
  Stamp stamp();

  bool isStored() const { return connection_.isStored(); }
  const std::string& folder() const { return connection_.folder(); }

 private:
  struct LargeData {
    std::int64_t id = 0;
    std::int64_t hash = 0;
  };
  struct Entry {
    bool isPresent = false;
    std::string encoded;
    /// In the order of the numbers that stand in the encoded list.
    std::vector<LargeData> largeData;
    /// Only of a list without large data.
    std::optional<PropertyList> value;
  };
  struct EncodedValue {
    PropertyList::Data list;
    std::vector<const PropertyList::Data*> largeData;
  };

  void refreshCache();
  std::int64_t foreignCommits();
  const Entry* cachedEntry(const std::string& key);
  const Entry* entryInTransaction(const std::string& key);
  bool load(const std::string& key, Entry& entry);
  bool loadLargeData(std::int64_t setting, Entry& entry);
  std::optional<PropertyList> decode(const Entry& entry);
  std::optional<PropertyList::Data> largeData(std::int64_t id);

  std::optional<EncodedValue> encode(const PropertyList& value, const std::string& key);
  bool write(const DefaultsConnection::Work& work);
  bool store(const std::string& key, const EncodedValue& value);
  std::optional<std::int64_t> storeSetting(const std::string& key, const EncodedValue& value);
  std::optional<std::int64_t> storeLargeData(const PropertyList::Data& data);
  std::optional<std::int64_t> settingWithKey(const std::string& key);
  std::optional<std::vector<std::int64_t>> uses(std::int64_t setting);
  bool replaceUses(std::int64_t setting, const std::vector<std::int64_t>& data);
  bool run(SqliteQuery& query);

  Log& log_;
  DefaultsConnection connection_;
  std::uint64_t ownCommits_ = 0;
  std::uint64_t cachedGeneration_ = 0;
  std::int64_t cachedForeignCommits_ = 0;
  std::unordered_map<std::string, Entry> cache_;
};

}  // namespace tavrin
