#pragma once

#include <optional>
#include <string>

#include "icons/Bytes.h"

namespace tavrin::icons {

/// The bytes of a regular file. Nothing, with the reason in `mistake`, when it cannot be read, is
/// no regular file, or has more than `mostBytes`.
std::optional<Bytes> readFile(const std::string& path, std::size_t mostBytes, std::string& mistake);

/// Puts a file at `path`, replacing what stands there in one step: at no time does a part of it
/// stand under that name. False, with the reason in `mistake`, leaves what stood there.
bool replaceFile(const std::string& path, BytesView bytes, std::string& mistake);

/// A path beside `path` that nobody uses, for what is not whole yet.
std::string temporaryPathBeside(const std::string& path);

/// "WHAT PATH: the system's reason", from errno.
std::string reasonFor(const char* what, const std::string& path);

/// One line on standard error: "TOOL: MESSAGE", with control characters shown as "?".
void complain(const char* tool, const std::string& message);

}  // namespace tavrin::icons
