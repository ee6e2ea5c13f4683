// What std::filesystem makes of a copy, a move and a removal in one call each: what a program does
// that has no file engine of its own.

#include <cstring>
#include <filesystem>
#include <iostream>

namespace {

namespace fs = std::filesystem;

bool run(int count, char** arguments) {
  const char* operation = count > 2 ? arguments[1] : "";
  if (count == 4 && std::strcmp(operation, "copy") == 0) {
    fs::copy(arguments[2], arguments[3],
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  } else if (count == 4 && std::strcmp(operation, "move") == 0) {
    fs::rename(arguments[2], arguments[3]);
  } else if (count == 3 && std::strcmp(operation, "remove") == 0) {
    fs::remove_all(arguments[2]);
  } else {
    return false;
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    if (run(count, arguments)) return 0;
    std::cerr << "Usage: plain-filesystem copy|move SOURCE DESTINATION | remove PATH\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
