#pragma once

#include <cstddef>
#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// Reads and writes property lists in Apple's XML and binary formats.
class PropertyListSerialization {
 public:
  virtual ~PropertyListSerialization() = default;

  /// Files larger than this (bytes) are refused unread.
  static constexpr std::size_t maximumFileSize = 64U << 20U;
  /// Data whose collections nest deeper than this is refused before it is taken apart.
  static constexpr std::size_t maximumDepth = 512;

  enum class Format { Xml, Binary };

  /// Takes apart either format. Fails with invalid_argument for anything that is no property list,
  /// is truncated, or nests too deep; never reads outside `data` and never ends the process.
  virtual Result<PropertyList> propertyListFromData(const PropertyList::Data& data) = 0;

  /// Every value survives the way there and back in both formats; a string that is no UTF-8
  /// keeps its bytes in the binary one.
  virtual Result<PropertyList::Data> dataFromPropertyList(const PropertyList& value,
                                                          Format format) = 0;

  /// Reads the property list in a file that the user or the system handed to the program, which
  /// needs no security scope. Never blocks: anything but a regular file (after symbolic links) is
  /// refused, as is one larger than maximumFileSize. A file that the program was asked to open
  /// reads as it was when the asking was accepted, once for each time it was.
  virtual Result<PropertyList> propertyListWithContentsOfFile(const std::string& path) = 0;
};

}  // namespace tavrin
