#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/DefaultsConnection.h"
#include "platform/linux/KnownLargeData.h"

namespace tavrin {

/// The large data in the database of one settings domain: each of equal bytes once, with the
/// settings that use it. What is asked of it here belongs into a transaction of the connection.
class DefaultsLargeData {
 public:
  using Bytes = KnownLargeData::Bytes;

  /// The connection outlives this object.
  DefaultsLargeData(DefaultsConnection& connection, std::shared_ptr<KnownLargeData> known);

  /// One use of data by a setting.
  struct Use {
    std::int64_t id = 0;
    std::string digest;
  };

  /// The uses of a setting in the order of the numbers that stand in its list; nothing after a
  /// failure.
  std::optional<std::vector<Use>> uses(std::int64_t setting);

  /// The data of a use, read from the database only when nobody holds it; null after a failure.
  Bytes read(const Use& use);
  /// The data where somebody holds it; null where nobody does. Needs no transaction.
  Bytes held(const Use& use) const { return known_->bytesOf(use.digest); }

  /// The digest to store data under. Needs no transaction.
  std::string digestOf(const Bytes& bytes) { return known_->digestOf(bytes); }

  /// The number of the row with these bytes, which is made if need be; nothing after a failure.
  std::optional<std::int64_t> store(const PropertyList::Data& bytes, const std::string& digest);

  /// Makes `uses` those of a setting, and removes the data that nothing uses any more. False after
  /// a failure.
  bool replaceUses(std::int64_t setting, const std::vector<Use>& uses);

 private:
  std::optional<std::vector<std::int64_t>> usedRows(std::int64_t setting);
  bool setUse(std::int64_t setting, std::size_t position, std::int64_t data);
  bool removeUnused(const std::vector<std::int64_t>& former, const std::vector<Use>& uses);
  bool run(SqliteQuery& query);

  DefaultsConnection& connection_;
  std::shared_ptr<KnownLargeData> known_;
};

}  // namespace tavrin
