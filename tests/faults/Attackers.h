#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace tavrin::testing {

/// Opens a folder by its name in another, for an attacker: never through a link, so that it is not
/// led outside itself.
FileDescriptor openOwnFolder(int parent, const std::string& name);

/// Puts two items into each other's place; false when one of them is not there.
bool exchange(int oneFolder, const std::string& one, int otherFolder, const std::string& other);

/// Threads that strike over and over for as long as this lives.
class Attackers {
 public:
  /// `count` counts the strikes that succeed, over the lives of several of these.
  explicit Attackers(std::atomic<long>& count) : count_(count) {}
  Attackers(const Attackers&) = delete;
  Attackers& operator=(const Attackers&) = delete;
  ~Attackers();

  /// Begins a thread; `strike` tells whether it succeeded.
  void add(std::function<bool()> strike);

  /// Ends the attack and comes back when it has ended.
  void stop();

 private:
  std::atomic<long>& count_;
  std::atomic<bool> hasEnded_ = false;
  std::vector<std::thread> threads_;
};

/// A link to a place outside that an attacker keeps beside the trees, to put it where a folder is.
class Bait {
 public:
  /// `target` is where the link leads, `name` its name in the folder, which is borrowed.
  Bait(int folder, std::string path, std::string name, std::string target);

  /// Exchanges the folder `inner`, in an open one, for the link and, as it comes, back.
  bool strike(int outer, const std::string& inner) const;

  /// Makes the link anew when a folder stands under its name.
  void restore() const;

 private:
  int folder_;
  std::string path_;
  std::string name_;
  std::string target_;
};

}  // namespace tavrin::testing
