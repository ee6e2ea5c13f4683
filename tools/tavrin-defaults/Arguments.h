#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/PropertyList.h"

namespace tavrin::defaultstool {

/// What the user asked for, checked as far as the words alone tell.
struct Request {
  enum class Command { Help, Version, Read, Write, Delete, Export, Import };
  Command command = Command::Help;
  bool isGroup = false;
  std::optional<std::string> key;
  /// Of `write`, unless the value comes from a file.
  std::optional<PropertyList> value;
  /// Of `export`, `import` and `write -plist`; "-" is the standard stream.
  std::string file;
};

/// Reads the words after the program's name. Returns nothing and fills `mistake` with one line when
/// they make no command.
std::optional<Request> requestFromArguments(const std::vector<std::string>& words,
                                            std::string& mistake);

/// What `--help` shows.
extern const char* const usage;

}  // namespace tavrin::defaultstool
