#include "foundation/PathString.h"

namespace tavrin {

namespace {

std::string_view withoutTrailingSeparators(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

/// Where the last component begins in a path without trailing separators.
std::size_t startOfLastComponent(std::string_view path) {
  const auto separator = path.rfind('/');
  return separator == std::string_view::npos ? 0 : separator + 1;
}

/// Where the extension's dot stands in a path without trailing separators; npos when there is none.
std::size_t extensionDot(std::string_view path) {
  const auto start = startOfLastComponent(path);
  const auto dot = path.rfind('.');
  return dot == std::string_view::npos || dot <= start ? std::string_view::npos : dot;
}

std::string joinComponents(const std::vector<std::string>& components) {
  std::string path;
  for (const std::string& component : components) {
    if (!path.empty() && path.back() != '/') path += '/';
    path += component;
  }
  return path;
}

}  // namespace

std::string lastPathComponent(std::string_view path) {
  path = withoutTrailingSeparators(path);
  if (path == "/") return "/";
  return std::string(path.substr(startOfLastComponent(path)));
}

std::string deletingLastPathComponent(std::string_view path) {
  path = withoutTrailingSeparators(path);
  const auto start = startOfLastComponent(path);
  return std::string(withoutTrailingSeparators(path.substr(0, start)));
}

std::string pathExtension(std::string_view path) {
  path = withoutTrailingSeparators(path);
  const auto dot = extensionDot(path);
  return dot == std::string_view::npos ? std::string() : std::string(path.substr(dot + 1));
}

std::string deletingPathExtension(std::string_view path) {
  path = withoutTrailingSeparators(path);
  return std::string(path.substr(0, extensionDot(path)));
}

std::vector<std::string> pathComponents(std::string_view path) {
  std::vector<std::string> components;
  if (!path.empty() && path.front() == '/') components.emplace_back("/");
  std::size_t start = 0;
  while (start < path.size()) {
    const auto end = std::min(path.find('/', start), path.size());
    if (end > start) components.emplace_back(path.substr(start, end - start));
    start = end + 1;
  }
  return components;
}

std::string appendingPathComponent(std::string_view path, std::string_view name) {
  std::string joined(withoutTrailingSeparators(path));
  if (!joined.empty() && joined.back() != '/') joined += '/';
  const auto first = name.find_first_not_of('/');
  if (first != std::string_view::npos) joined += name.substr(first);
  return joined;
}

std::string standardizingPath(std::string_view path) {
  const bool absolute = !path.empty() && path.front() == '/';
  std::vector<std::string> standardized;
  for (std::string& component : pathComponents(path)) {
    if (component == ".") continue;
    if (absolute && component == "..") {
      if (standardized.size() > 1) standardized.pop_back();
      continue;
    }
    standardized.push_back(std::move(component));
  }
  return joinComponents(standardized);
}

bool isPathAtOrBelow(std::string_view path, std::string_view ancestor) {
  if (!path.starts_with(ancestor)) return false;
  return path.size() == ancestor.size() || ancestor == "/" || path[ancestor.size()] == '/';
}

}  // namespace tavrin
