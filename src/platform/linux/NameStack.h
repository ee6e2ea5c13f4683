#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// File names, of which the last one in comes out first. Takes little more memory than their bytes.
class NameStack {
 public:
  bool isEmpty() const { return bytes_.empty(); }
  /// `name` holds no NUL byte, as no file name does.
  void push(std::string_view name) { bytes_.append(name).push_back('\0'); }
  /// Not to be called when empty.
  std::string pop();

 private:
  std::string bytes_;
};

inline std::string NameStack::pop() {
  bytes_.pop_back();
  const std::size_t end = bytes_.rfind('\0');
  const std::size_t begin = end == std::string::npos ? 0 : end + 1;
  std::string name = bytes_.substr(begin);
  bytes_.resize(begin);
  return name;
}

}  // namespace tavrin
