#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "foundation/Result.h"

namespace tavrin {

/// The names of the pasteboards that all programs of the session share.
namespace pasteboard_name {

/// What is dragged (NSPasteboardNameDrag).
inline constexpr const char* drag = "drag";

}  // namespace pasteboard_name

enum class PasteboardType {
  /// Plain text (NSStringPboardType).
  String,
};

/// A place for content on its way to other programs, as NSPasteboard. Another program sees the old
/// content or the new one, never a part.
class Pasteboard {
 public:
  /// The end of one with a unique name ends the pasteboard too.
  virtual ~Pasteboard() = default;

  /// Takes the content away.
  virtual void clearContents() = 0;

  /// Makes file URLs, in this order, the content of a cleared pasteboard; no URLs make an empty
  /// list. Fails, the pasteboard being empty then, when the system does not take them.
  virtual Status writeObjects(const std::vector<FileURL>& urls) = 0;

  /// Clears the pasteboard and says what kinds of content it is going to have
  /// (declareTypes:owner:, without an owner).
  virtual void declareTypes(const std::vector<PasteboardType>& types) = 0;

  /// Makes a text of any bytes, unchanged, the content of a declared type. Fails with
  /// invalid_argument for one that was not declared, or when the system does not take it.
  virtual Status setString(const std::string& string, PasteboardType type) = 0;

  /// The text as it was set, by whomever; nothing when there is none.
  virtual std::optional<std::string> stringForType(PasteboardType type) const = 0;
};

/// Used on the main thread.
class PasteboardProvider {
 public:
  virtual ~PasteboardProvider() = default;

  /// A shared pasteboard; see pasteboard_name.
  virtual std::unique_ptr<Pasteboard> pasteboardWithName(const std::string& name) = 0;

  /// A new, empty pasteboard that no other has the name of.
  virtual std::unique_ptr<Pasteboard> pasteboardWithUniqueName() = 0;
};

}  // namespace tavrin
