#include "platform/linux/DefaultsLargeData.h"

#include <set>
#include <utility>

namespace tavrin {

namespace {

std::string_view asText(const PropertyList::Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

}  // namespace

DefaultsLargeData::DefaultsLargeData(DefaultsConnection& connection,
                                     std::shared_ptr<KnownLargeData> known)
    : connection_(connection), known_(std::move(known)) {}

bool DefaultsLargeData::run(SqliteQuery& query) {
  query.run();
  return connection_.succeeded(query);
}

std::optional<std::vector<DefaultsLargeData::Use>> DefaultsLargeData::uses(std::int64_t setting) {
  SqliteQuery query = connection_.query(
      "SELECT large_data.id, hash FROM large_data_use JOIN large_data ON large_data.id=data "
      "WHERE setting=?1 ORDER BY position");
  query.bind(1, setting);
  std::vector<Use> uses;
  while (query.nextRow()) uses.push_back({query.integer(0), std::string(query.bytes(1))});
  return connection_.succeeded(query) ? std::optional(std::move(uses)) : std::nullopt;
}

DefaultsLargeData::Bytes DefaultsLargeData::read(const Use& use) {
  if (Bytes bytes = held(use)) return bytes;
  SqliteQuery query = connection_.query("SELECT bytes FROM large_data WHERE id=?1");
  if (!query.bind(1, use.id).nextRow()) {
    connection_.succeeded(query);
    return nullptr;
  }
  const std::string_view text = query.bytes(0);
  auto bytes = std::make_shared<const PropertyList::Data>(text.begin(), text.end());
  // Of a row that an older version has made, the digest is another.
  if (use.digest.size() == KnownLargeData::digestSize) known_->remember(bytes, use.digest);
  return bytes;
}

std::optional<std::int64_t> DefaultsLargeData::store(const PropertyList::Data& bytes,
                                                     const std::string& digest) {
  SqliteQuery search = connection_.query("SELECT id FROM large_data WHERE hash=?1");
  if (search.bind(1, digest).nextRow()) return search.integer(0);
  if (!connection_.succeeded(search)) return std::nullopt;
  SqliteQuery insertion =
      connection_.query("INSERT INTO large_data(hash, bytes) VALUES(?1, ?2) RETURNING id");
  if (!insertion.bind(1, digest).bind(2, asText(bytes)).nextRow()) {
    connection_.succeeded(insertion);
    return std::nullopt;
  }
  const std::int64_t id = insertion.integer(0);
  return run(insertion) ? std::optional(id) : std::nullopt;
}

std::optional<std::vector<std::int64_t>> DefaultsLargeData::usedRows(std::int64_t setting) {
  SqliteQuery query =
      connection_.query("SELECT data FROM large_data_use WHERE setting=?1 ORDER BY position");
  query.bind(1, setting);
  std::vector<std::int64_t> rows;
  while (query.nextRow()) rows.push_back(query.integer(0));
  return connection_.succeeded(query) ? std::optional(std::move(rows)) : std::nullopt;
}

bool DefaultsLargeData::replaceUses(std::int64_t setting, const std::vector<Use>& uses) {
  const auto former = usedRows(setting);
  if (!former) return false;
  for (std::size_t position = 0; position < uses.size(); ++position) {
    const bool stands = position < former->size() && (*former)[position] == uses[position].id;
    if (!stands && !setUse(setting, position, uses[position].id)) return false;
  }
  if (uses.size() < former->size()) {
    SqliteQuery removal =
        connection_.query("DELETE FROM large_data_use WHERE setting=?1 AND position>=?2");
    removal.bind(1, setting).bind(2, static_cast<std::int64_t>(uses.size()));
    if (!run(removal)) return false;
  }
  return removeUnused(*former, uses);
}

bool DefaultsLargeData::setUse(std::int64_t setting, std::size_t position, std::int64_t data) {
  SqliteQuery query = connection_.query(
      "INSERT INTO large_data_use(setting, position, data) VALUES(?1, ?2, ?3) "
      "ON CONFLICT(setting, position) DO UPDATE SET data=excluded.data");
  query.bind(1, setting).bind(2, static_cast<std::int64_t>(position)).bind(3, data);
  return run(query);
}

bool DefaultsLargeData::removeUnused(const std::vector<std::int64_t>& former,
                                     const std::vector<Use>& uses) {
  std::set<std::int64_t> gone(former.begin(), former.end());
  for (const Use& use : uses) gone.erase(use.id);
  for (const std::int64_t id : gone) {
    SqliteQuery removal = connection_.query(
        "DELETE FROM large_data WHERE id=?1 AND NOT EXISTS"
        "(SELECT 1 FROM large_data_use WHERE data=?1)");
    if (!run(removal.bind(1, id))) return false;
  }
  return true;
}

}  // namespace tavrin
