// The folders of the desktop session in which all tests of the program run: GLib asks for them
// once.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin::test {

namespace {

class SessionFolders : public testing::Environment {
 public:
  void SetUp() override {
    folder_ = std::make_unique<TemporaryFolder>();
    setVariable("XDG_DATA_HOME", *folder_ / "data");
    setVariable("XDG_DATA_DIRS", (*folder_ / "system"));
    setVariable("XDG_CONFIG_HOME", (*folder_ / "config"));
    setVariable("XDG_RUNTIME_DIR", folder_->path());
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS"}) {
      setVariable(name, std::nullopt);
    }
  }
  void TearDown() override { folder_.reset(); }

 private:
  std::unique_ptr<TemporaryFolder> folder_;
};

[[maybe_unused]] const auto* const sessionFolders =
    testing::AddGlobalTestEnvironment(new SessionFolders);

}  // namespace

}  // namespace tavrin::test
