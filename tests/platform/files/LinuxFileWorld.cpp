#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "tests/platform/files/FileWorld.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;

std::string textOfFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class LinuxFileWorld final : public FileWorld {
 public:
  LinuxFileWorld() {
    fs::create_directories(root());
    fs::create_directories(resources());
    std::ofstream(resources() + "/icon") << "icon";
    LinuxFileWorld::relaunch(User::Same);
  }

  FileManager& files() override { return *files_; }
  SecurityScope& scopes() override { return *scopes_; }
  std::string root() const override { return scratch_.path() + "/root"; }
  std::string resources() const override { return scratch_.path() + "/resources"; }

  void addFile(const std::string& path, std::string_view text) override {
    fs::create_directories(fs::path(at(path)).parent_path());
    std::ofstream(at(path), std::ios::binary) << text;
  }
  void addFolder(const std::string& path) override { fs::create_directories(at(path)); }
  void addSymlink(const std::string& path, const std::string& target) override {
    fs::create_directories(fs::path(at(path)).parent_path());
    fs::create_symlink(target, at(path));
  }
  void discardItem(const std::string& path) override { fs::remove_all(at(path)); }
  void renameItem(const std::string& path, const std::string& newPath) override {
    fs::create_directories(fs::path(at(newPath)).parent_path());
    fs::rename(at(path), at(newPath));
  }

  std::vector<std::string> snapshot() const override {
    std::vector<std::string> items;
    for (const auto& entry : fs::recursive_directory_iterator(root())) {
      std::string item = entry.path().string().substr(root().size() + 1);
      if (entry.is_symlink()) {
        item += "->" + fs::read_symlink(entry.path()).string();
      } else if (entry.is_regular_file()) {
        item += "=" + textOfFile(entry.path());
      }
      items.push_back(item);
    }
    std::sort(items.begin(), items.end());
    return items;
  }

  bool pick(const std::string& absolutePath) override {
    return static_cast<bool>(grantByPicking(*scopes_, absolutePath));
  }
  bool pickPlace(const std::string& absolutePath) override {
    return static_cast<bool>(grantPlaceByPicking(*scopes_, absolutePath));
  }

  void relaunch(User user) override {
    const std::string data = scratch_.path() + "/data";
    const std::string keys = scratch_.path() + (user == User::Same ? "/keys" : "/other keys");
    files_.reset();
    scopes_ = std::make_unique<LinuxSecurityScope>(
        LinuxSecurityScope::Locations{keys, data + "/group", resources()}, log_);
    files_ = std::make_unique<LinuxFileManager>(*scopes_, log_, data);
  }

 private:
  testing::ScratchFolder scratch_;
  FakeLog log_;
  std::unique_ptr<LinuxSecurityScope> scopes_;
  std::unique_ptr<LinuxFileManager> files_;
};

}  // namespace

std::unique_ptr<FileWorld> makeLinuxFileWorld() {
  return std::make_unique<LinuxFileWorld>();
}

}  // namespace tavrin
