#include "foundation/PathString.h"
#include "tests/platform/files/FileWorld.h"
#include "tests/support/FakeFileManager.h"
#include "tests/support/FakeSecurityScope.h"

namespace tavrin {

namespace {

class FakeFileWorld final : public FileWorld {
 public:
  FakeFileWorld() {
    files_.addFolder(root());
    files_.addFile("/resources/icon", "icon");
    files_.setResourceFolder("/resources");
    FakeFileWorld::relaunch(User::Same);
  }

  FileManager& files() override { return files_; }
  SecurityScope& scopes() override { return *scopes_; }
  std::string root() const override { return "/root"; }
  std::string resources() const override { return "/resources"; }

  void addFile(const std::string& path, std::string_view text) override {
    files_.addFile(at(path), text);
  }
  void addFolder(const std::string& path) override { files_.addFolder(at(path)); }
  void addSymlink(const std::string& path, const std::string& target) override {
    files_.addSymlink(at(path), target);
  }
  void discardItem(const std::string& path) override { files_.discardItem(at(path)); }
  void renameItem(const std::string& path, const std::string& newPath) override {
    files_.renameItem(at(path), at(newPath));
  }

  std::vector<std::string> snapshot() const override {
    std::vector<std::string> items;
    for (const std::string& path : files_.allPaths()) {
      if (path == root() || !isPathAtOrBelow(path, root())) continue;
      const auto text = files_.textOfFile(path);
      const auto target = files_.targetOfSymlink(path);
      items.push_back(path.substr(root().size() + 1) + (text ? "=" + *text : "") +
                      (target ? "->" + *target : ""));
    }
    return items;
  }

  bool pick(const std::string& absolutePath) override {
    return scopes_->grantByPanel(absolutePath);
  }

  bool pickPlace(const std::string& absolutePath) override {
    scopes_->grantPlaceByPanel(absolutePath);
    return true;
  }

  void relaunch(User user) override {
    scopes_ = std::make_unique<FakeSecurityScope>(files_, user == User::Same ? "user" : "other");
    scopes_->enforce();
  }

 private:
  FakeFileManager files_;
  std::unique_ptr<FakeSecurityScope> scopes_;
};

}  // namespace

std::unique_ptr<FileWorld> makeFakeFileWorld() {
  return std::make_unique<FakeFileWorld>();
}

}  // namespace tavrin
