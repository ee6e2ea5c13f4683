#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "foundation/PropertyList.h"
#include "platform/Log.h"
#include "platform/linux/DefaultsFile.h"
#include "platform/linux/SqliteConnection.h"

namespace tavrin {

/// Reads the settings of one domain in a process that has no part in them, such as a file manager:
/// it creates, repairs and changes nothing, and never waits for anybody longer than 20
/// milliseconds. Used on one thread.
class DefaultsReader {
 public:
  /// `folder` is the domain's, absolute; it need not be there. `log` outlives the reader.
  DefaultsReader(std::string folder, Log& log);

  /// Whether `read` may give another answer than last time. Costs a few microseconds.
  bool hasChanged();

  /// The values of those of the keys that are there, all of one state; none where there is no
  /// domain or it cannot be read, which reaches the log once. Large data is not read: a digest
  /// stands in its place. Nothing when others keep the domain from being read right now.
  std::optional<PropertyList::Dictionary> read(std::span<const char* const> keys);

  /// The SHA-256 that stands in the place of large data, in hexadecimal digits; of data that was
  /// read, its own.
  static std::string digestOf(const PropertyList::Data& data);

 private:
  bool open();
  std::int64_t version();
  std::string times() const;
  std::string log() const;
  std::optional<PropertyList> value(const char* key);
  std::optional<PropertyList::Dictionary> readOpened(std::span<const char* const> keys);

  DefaultsFile file_;
  Log& log_;
  SqliteConnection connection_;
  /// What the last answer was about.
  std::optional<DefaultsFile::Identity> seenFile_;
  std::int64_t seenVersion_ = 0;
  /// Which files stood beside the database after it was read.
  std::string seenLog_;
  /// Of a file that could not be read.
  std::string seenTimes_;
};

}  // namespace tavrin
