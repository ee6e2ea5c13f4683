// The bare system calls of a command, over a list of paths: what the command could cost at best.
// Prints the seconds that the calls took, without the reading of the list.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::vector<std::string> readNames(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  std::vector<std::string> names;
  for (std::string name; std::getline(stream, name, '\0');) names.push_back(name);
  return names;
}

bool statFourTimes(const std::string& path) {
  struct stat status {};
  for (int time = 0; time < 4; ++time) {
    if (::stat(path.c_str(), &status) != 0) return false;
  }
  return true;
}

bool moveInto(const std::string& path, const std::string& folder) {
  const std::string destination = folder + path.substr(path.rfind('/'));
  return ::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE) == 0;
}

bool run(const std::string& call, const std::string& path, const std::string& folder) {
  if (call == "stat") return statFourTimes(path);
  if (call == "lookup") return ::faccessat(AT_FDCWD, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
  if (call == "unlink") return ::unlink(path.c_str()) == 0;
  return moveInto(path, folder);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    std::cerr << "Usage: bare-calls stat|lookup|unlink|rename LIST [FOLDER]\n";
    return 2;
  }
  const std::string call = arguments[1];
  const std::string folder = count > 3 ? arguments[3] : "";
  const std::vector<std::string> names = readNames(arguments[2]);
  const auto start = std::chrono::steady_clock::now();
  for (const std::string& name : names) {
    if (run(call, name, folder)) continue;
    std::perror(name.c_str());
    return 1;
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::cout << seconds.count() << '\n';
  return 0;
}
