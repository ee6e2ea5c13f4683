// Copies, moves and removes in a folder that is granted, while others put links to what is not
// granted in the place of folders there:
//   swap-attack [--naive] FOLDER FAR SWAPS
// FOLDER and FAR are empty folders on two file systems; without swaps they are only filled. Prints
// what it did as one line of JSON; whether anything outside has changed is for others to see.

#include <fcntl.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "tests/faults/Attackers.h"

namespace tavrin::testing {
namespace {

namespace fs = std::filesystem;

constexpr const char* secret = "what only the place outside has";
constexpr int levels = 80;  // more than a walk keeps open

class SilentLog final : public Log {
 public:
  void write(std::string_view) override {}
};

void writeFile(const fs::path& path, const std::string& text) {
  std::ofstream(path) << text;
}

bool isSecret(const fs::path& file) {
  std::ifstream stream(file);
  return std::string(std::istreambuf_iterator<char>(stream), {}) == secret;
}

/// The files of a copy that hold what stands outside. A link that leads there is no such file.
long secretsIn(const fs::path& folder) {
  std::error_code cause;
  const fs::file_status status = fs::symlink_status(folder, cause);
  if (fs::is_regular_file(status)) return isSecret(folder) ? 1 : 0;
  if (!fs::is_directory(status)) return 0;
  long found = 0;
  for (fs::recursive_directory_iterator entry(folder, cause), end; entry != end;
       entry.increment(cause)) {
    if (entry->is_regular_file() && !entry->is_symlink() && isSecret(entry->path())) ++found;
  }
  return found;
}

/// "sub" and "sub/deep" with files.
void buildTree(const fs::path& tree) {
  fs::create_directories(tree / "sub/deep");
  for (const char* folder : {"", "sub", "sub/deep"}) {
    for (const char* name : {"file", "other", "third"}) writeFile(tree / folder / name, "own");
  }
}

/// The same with "chain", folders in each other.
void buildDeepTree(const fs::path& tree) {
  buildTree(tree);
  fs::path inner = tree / "chain";
  for (int level = 0; level < levels; ++level) inner /= "n";
  fs::create_directories(inner);
  writeFile(inner / "file", "own");
}

class Attack {
 public:
  Attack(const fs::path& folder, const fs::path& far, bool isNaive)
      : grant_(folder / "grant"), outside_(folder / "outside"), far_(far), isNaive_(isNaive) {
    fs::create_directories(grant_ / "copies");
    buildTree(grant_ / "tree");
    buildTree(grant_ / "clean");
    if (!fs::exists(outside_)) buildOutside();
    top_ = openOwnFolder(AT_FDCWD, grant_);
    attic_ = openOwnFolder(AT_FDCWD, outside_ / "attic");
    copies_ = openOwnFolder(top_.get(), "copies");
    for (const fs::path& granted : {grant_, far_}) {
      if (const auto grant = ScopeGrant::open(granted)) scopes_.grantByPicking(grant.value());
    }
  }

  using Kind = void (Attack::*)(long enough);
  void run(Kind kind, long swaps) { (this->*kind)(swaps_ + swaps); }

  /// The source of copies changes into links and back.
  void attackSource(long enough) {
    const FileDescriptor tree = openOwnFolder(top_.get(), "tree");
    const FileDescriptor sub = openOwnFolder(tree.get(), "sub");
    const Bait first = bait("bait 1", outside_);
    const Bait second = bait("bait 2", outside_ / "deep");
    Attackers attackers(swaps_);
    attackers.add([&] { return first.strike(tree.get(), "sub"); });
    attackers.add([&] { return second.strike(sub.get(), "deep"); });
    while (swaps_ < enough) {
      copyAndLook(grant_ / "tree");
      copyAndLook(grant_ / "tree/sub");
      copyAndLook(grant_ / "tree/sub/deep/file");
      count(files_.copyItemAtPath(grant_ / "clean/sub", grant_ / "tree/sub/deep/new"));
      count(files_.removeItemAtPath(grant_ / "tree/sub/deep/new"));
      count(files_.createFileAtPath(grant_ / "tree/sub/new", {}, FileManager::Replace::Yes));
      count(files_.removeItemAtPath(grant_ / "tree/sub/new"));
    }
  }

  /// The folders of a copy change into links while it grows and while it is removed.
  void attackCopies(long enough) {
    const Bait first = bait("bait 3", outside_);
    Attackers attackers(swaps_);
    attackers.add([&] { return strikeCopies(first); });
    while (swaps_ < enough) {
      count(files_.copyItemAtPath(grant_ / "clean", grant_ / "copies/copy"));
      count(files_.removeItemAtPath(grant_ / "copies/copy"));
    }
    attackers.stop();
    emptyCopies();
  }

  /// What is moved to another file system changes into links meanwhile.
  void attackMoves(long enough) {
    while (swaps_ < enough) {
      buildTree(grant_ / "moved");
      const FileDescriptor tree = openOwnFolder(top_.get(), "moved");
      const Bait first = bait("bait 4", outside_);
      Attackers attackers(swaps_);
      attackers.add([&] { return first.strike(tree.get(), "sub"); });
      count(files_.moveItemAtPath(grant_ / "moved", far_ / "moved"));
      attackers.stop();
      secrets_ += secretsIn(far_ / "moved");
      fs::remove_all(far_ / "moved");
      fs::remove_all(grant_ / "moved");
    }
  }

  /// A folder that is walked in goes out of the grant, so that ".." leads elsewhere.
  void attackWayBack(long enough) {
    while (swaps_ < enough) {
      buildDeepTree(grant_ / "gone");
      const FileDescriptor tree = openOwnFolder(top_.get(), "gone");
      const FileDescriptor chain = openOwnFolder(tree.get(), "chain");
      const FileDescriptor inner = openOwnFolder(chain.get(), "n");
      Attackers attackers(swaps_);
      attackers.add([&] { return moveOutAndBack(inner.get()); });
      copyAndLook(grant_ / "gone");
      count(files_.removeItemAtPath(grant_ / "gone"));
      attackers.stop();
      fs::remove_all(grant_ / "gone");
      fs::remove_all(outside_ / "attic/walked in");
    }
  }

  void print() const {
    std::printf("{\"swaps\": %ld, \"done\": %ld, \"refused\": %ld, \"secrets\": %ld}\n",
                swaps_.load(), done_, refused_, secrets_);
  }

 private:
  Bait bait(const std::string& name, const fs::path& target) const {
    return {top_.get(), grant_, name, target};
  }

  void buildOutside() const {
    fs::create_directories(outside_ / "deep");
    fs::create_directories(outside_ / "attic/of others");
    for (const char* name :
         {"file", "other", "third", "deep/file", "deep/only outside", "attic/of others/file"}) {
      writeFile(outside_ / name, secret);
    }
  }

  void count(const Status& status) { ++(status ? done_ : refused_); }

  void copyAndLook(const fs::path& source) {
    const fs::path copy = grant_ / "copies/copy";
    if (isNaive_) {
      copyByPaths(source, copy);
    } else {
      count(files_.copyItemAtPath(source, copy));
    }
    secrets_ += secretsIn(copy);
    fs::remove_all(copy);
  }

  /// As a program copies that trusts paths: what the attack is made for.
  static void copyByPaths(const fs::path& source, const fs::path& copy) {
    std::error_code cause;
    fs::create_directories(copy);
    for (fs::directory_iterator entry(source, cause), end; entry != end; entry.increment(cause)) {
      fs::copy(entry->path(), copy / entry->path().filename(), fs::copy_options::recursive, cause);
    }
  }

  bool strikeCopies(const Bait& bait) const {
    bool hasStruck = false;
    std::error_code cause;
    for (fs::directory_iterator entry(grant_ / "copies", cause), end; entry != end;
         entry.increment(cause)) {
      const FileDescriptor copy = openOwnFolder(copies_.get(), entry->path().filename());
      if (!copy || !bait.strike(copy.get(), "sub")) continue;
      hasStruck = true;
      // When the copy is gone meanwhile, the folder stays with us.
      if (!bait.strike(copy.get(), "sub")) bait.restore();
    }
    return hasStruck;
  }

  bool moveOutAndBack(int outer) const {
    if (::renameat(outer, "n", attic_.get(), "walked in") != 0) return false;
    return ::renameat(attic_.get(), "walked in", outer, "n") == 0;
  }

  void emptyCopies() const {
    for (const auto& entry : fs::directory_iterator(grant_ / "copies")) fs::remove_all(entry);
  }

  fs::path grant_;
  fs::path outside_;
  fs::path far_;
  bool isNaive_;
  SilentLog log_;
  LinuxSecurityScope scopes_{{}, log_};
  LinuxFileManager files_{scopes_, log_, grant_ / "data"};
  FileDescriptor top_;
  FileDescriptor attic_;
  FileDescriptor copies_;
  std::atomic<long> swaps_ = 0;
  long done_ = 0;
  long refused_ = 0;
  long secrets_ = 0;
};

int run(const fs::path& folder, const fs::path& far, long swaps, bool isNaive) {
  Attack attack(folder, far, isNaive);
  // The first call builds what is outside, and nothing may strike before others have looked at it.
  if (swaps == 0) return 0;
  attack.run(&Attack::attackSource, isNaive ? swaps : swaps / 4);
  if (!isNaive) {
    attack.run(&Attack::attackCopies, swaps / 4);
    attack.run(&Attack::attackMoves, swaps / 4);
    attack.run(&Attack::attackWayBack, swaps / 4);
  }
  attack.print();
  return 0;
}

}  // namespace
}  // namespace tavrin::testing

int main(int count, char** arguments) {
  const bool isNaive = count > 1 && std::strcmp(arguments[1], "--naive") == 0;
  if (count != (isNaive ? 5 : 4)) {
    std::fputs("Usage: swap-attack [--naive] FOLDER FAR SWAPS\n", stderr);
    return 2;
  }
  char** operands = arguments + (isNaive ? 2 : 1);
  return tavrin::testing::run(operands[0], operands[1], std::atol(operands[2]), isNaive);
}
