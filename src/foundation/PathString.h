#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Path strings as Foundation's NSString reads them. A path is a byte string; "/" separates its
/// components. None of these functions asks the disk.
namespace tavrin {

/// The last component, without trailing separators: "c" for "/a/b/c/", "/" for "/", "" for "".
std::string lastPathComponent(std::string_view path);

/// The path without its last component: "/a" for "/a/b", "/" for "/a" and "/", "" for "a".
std::string deletingLastPathComponent(std::string_view path);

/// What follows the last "." of the last component, without the ".". "" when there is none, when
/// nothing follows it, and when the name's only "." is its first character (".bashrc").
std::string pathExtension(std::string_view path);

/// The path without the last "." of its last component and what follows it. A path whose last
/// component has no extension dot (see pathExtension) is returned as it is.
std::string deletingPathExtension(std::string_view path);

/// The components; the first is "/" for an absolute path. Empty components are left out.
std::vector<std::string> pathComponents(std::string_view path);

/// `path` and `name` with exactly one separator between them.
std::string appendingPathComponent(std::string_view path, std::string_view name);

/// The path without empty and "." components and with ".." taken away together with the component
/// before it, by text alone; a ".." above the root is dropped. A relative path is only stripped of
/// empty and "." components, as NSString stringByStandardizingPath does.
std::string standardizingPath(std::string_view path);

/// True when `path` is `ancestor` or lies below it, component by component ("/ab" is not below
/// "/a"). Both are absolute, standardised paths.
bool isPathAtOrBelow(std::string_view path, std::string_view ancestor);

}  // namespace tavrin
