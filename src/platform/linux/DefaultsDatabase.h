#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/PropertyList.h"
#include "platform/linux/DefaultsConnection.h"
#include "platform/linux/DefaultsLargeData.h"

namespace tavrin {

/// The stored values of one settings domain, on one thread.
///
/// Values are binary property lists in SQLite with a write-ahead log. Data of `largeDataSize` bytes
/// and more stands beside them, once for all its uses, so that rewriting a list leaves its images
/// alone. What was read or written stays in memory, without large data, until somebody else
/// commits; large data that somebody holds is shared with whoever reads it again.
class DefaultsDatabase {
 public:
  static constexpr std::size_t largeDataSize = 4096;

  /// See DefaultsConnection. `known` may serve several domains.
  DefaultsDatabase(std::string folder, Log& log, std::function<void()> startedAfresh,
                   std::shared_ptr<KnownLargeData> known);

  std::optional<PropertyList> value(const std::string& key);
  std::vector<std::string> keys();

  /// Each is one commit. Returns false, after a log line, when nothing was changed because of a
  /// failure.
  bool set(const PropertyList& value, const std::string& key);
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
  /// A value as it is stored.
  struct Entry {
    bool isPresent = false;
    PropertyList::Data encoded;
    /// In the order of the numbers that stand in the encoded list.
    std::vector<DefaultsLargeData::Use> largeData;
    /// Of a list without large data, once it was asked for.
    std::optional<PropertyList> value;
    bool isDecoded = false;
  };
  /// A value to be stored, with the large data of the entry.
  struct EncodedValue {
    std::string key;
    Entry entry;
    std::vector<DefaultsLargeData::Bytes> largeData;
  };

  void refreshCache();
  std::int64_t foreignCommits();
  Entry* cachedEntry(const std::string& key);
  Entry* entryInTransaction(const std::string& key);
  bool load(const std::string& key, Entry& entry);
  /// The value without asking the database; nothing when that cannot be.
  std::optional<PropertyList> valueInMemory(const std::string& key, Entry& entry);
  using LargeDataOfUse = std::function<DefaultsLargeData::Bytes(const DefaultsLargeData::Use&)>;
  static std::optional<PropertyList> decode(const Entry& entry, const LargeDataOfUse& largeData);

  std::optional<EncodedValue> encode(const PropertyList& value, const std::string& key);
  bool write(const DefaultsConnection::Work& work);
  bool storeAll(std::vector<EncodedValue> values);
  bool store(EncodedValue& value);
  std::optional<std::int64_t> storeSetting(const EncodedValue& value);
  std::optional<std::int64_t> settingWithKey(const std::string& key);
  bool run(SqliteQuery& query);

  Log& log_;
  DefaultsConnection connection_;
  DefaultsLargeData largeData_;
  std::uint64_t ownCommits_ = 0;
  std::uint64_t cachedGeneration_ = 0;
  std::int64_t cachedForeignCommits_ = 0;
  std::unordered_map<std::string, Entry> cache_;
};

}  // namespace tavrin
