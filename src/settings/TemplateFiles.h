#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/Result.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"

namespace tavrin {

/// Whether a name can be that of one file in a folder. A title may hold anything; one with a
/// separator would lead out of the folder, and one with a NUL byte would be cut short there.
bool isNameOfOneFile(std::string_view name);

/// The files that new files are made from, in the folder that the group's programs share. Each is
/// named by its row: display name, a point, and extension. No name leads out of the folder: such an
/// operation fails with invalid_argument. Without the group's container everything fails with
/// no_such_device_or_address.
class TemplateFiles {
 public:
  /// Both outlive this object.
  TemplateFiles(const Bundle& bundle, FileManager& fileManager);

  /// The template's file name for a display name and an extension.
  static std::string nameOf(std::string_view displayName, std::string_view extension);

  /// Copies the file at `sourcePath` (absolute), with its rights and attributes, into the folder
  /// under its own name; makes the folder where it is missing. A link stands for the file that it
  /// leads to, which a started scope covers. A file that has the name is replaced in one step, and
  /// stands unchanged after a failure.
  Status add(const std::string& sourcePath);

  /// Gives a template another name; one that another file has fails with file_exists.
  Status rename(const std::string& name, const std::string& newName);

  Status remove(const std::string& name);

 private:
  Result<std::string> pathOf(const std::string& operation, const std::string& name);

  const Bundle& bundle_;
  FileManager& fileManager_;
};

}  // namespace tavrin
