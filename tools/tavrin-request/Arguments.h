#pragma once

#include <string>
#include <vector>

#include "foundation/PropertyList.h"
#include "menu/ActionArguments.h"

namespace tavrin::requesttool {

/// What the user asked for, checked as far as the words alone tell.
struct Order {
  enum class Kind { Help, Version, Send, Mistake };
  Kind kind = Kind::Mistake;
  /// One line, for a mistake.
  std::string mistake = {};

  /// For what is to be sent: the action, the keys that were set by their names, and the items, of
  /// which more stand in `nameFile` ("" for none, "-" for standard input).
  ActionArguments arguments = {};
  PropertyList::Dictionary keys = {};
  std::vector<std::string> names = {};
  std::string nameFile = {};
};

/// Reads the words after the program's name.
Order orderFromArguments(const std::vector<std::string>& words);

/// What `--help` shows.
extern const char* const usage;

/// The names of the actions, one a line and indented.
std::string listOfActions();

}  // namespace tavrin::requesttool
