#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QImage>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>

#include "foundation/FileManagers.h"
#include "platform/linux/LinuxExtensionController.h"
#include "platform/linux/MenuModuleNames.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"
#include "tests/support/FakeUserDefaults.h"

namespace tavrin {

bool operator==(const ExtensionHost& left, const ExtensionHost& right) {
  return left.identifier == right.identifier && left.displayName == right.displayName &&
         left.state == right.state;
}

std::ostream& operator<<(std::ostream& out, const ExtensionHost& host) {
  return out << host.identifier << " \"" << host.displayName << "\" "
             << static_cast<int>(host.state);
}

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using State = ExtensionHost::State;

constexpr const char* group = "group";
constexpr const char* nemoSettings = "org.nemo.plugins";
constexpr const char* disabledExtensions = "disabled-extensions";

/// The one that Nemo installs, as far as it matters here. That of Caja is missing.
constexpr const char* nemoSchema = R"(<schemalist>
<schema id="org.nemo.plugins" path="/org/nemo/plugins/">
<key name="disabled-extensions" type="as"><default>[]</default></key>
</schema></schemalist>)";

std::unique_ptr<test::TemporaryFolder> desktopFolder;

/// A desktop without file managers: GLib asks for its folders once.
class Desktop : public testing::Environment {
 public:
  static const std::string& folder() { return desktopFolder->path(); }

  void SetUp() override {
    desktopFolder = std::make_unique<test::TemporaryFolder>();
    const std::string schemas = folder() + "/data/glib-2.0/schemas";
    test::writeFile(schemas + "/org.nemo.gschema.xml", nemoSchema);
    ASSERT_EQ(test::ChildProcess({"glib-compile-schemas", schemas}).wait(), 0);
    test::setVariable("XDG_DATA_HOME", folder() + "/own");
    test::setVariable("XDG_DATA_DIRS", folder() + "/data");
    test::setVariable("XDG_CONFIG_HOME", folder() + "/config");
    test::setVariable("GSETTINGS_BACKEND", "memory");
    test::setVariable("PATH", folder() + "/bin");
  }
  void TearDown() override { desktopFolder.reset(); }
};

[[maybe_unused]] const auto* const desktop =
    testing::AddGlobalTestEnvironment(new Desktop());  // NOLINT: the framework owns it

/// While it lives, no file can be written.
class FullDisk {
 public:
  FullDisk() : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &limit_);
    const rlimit none = {0, limit_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &none);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &limit_);
    ::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  sighandler_t handler_;
  rlimit limit_ = {};
};

class ExtensionControllerTest : public testing::Test {
 protected:
  void TearDown() override {
    test::setVariable("QT_PLUGIN_PATH", std::nullopt);
    for (const char* part : {"bin", "config", "own"}) {
      std::filesystem::remove_all(Desktop::folder() + "/" + part);
    }
  }

  static void installProgram(const std::string& name) {
    test::writeFile(Desktop::folder() + "/bin/" + name, "#!/bin/sh\n");
  }
  static void installEntry(const std::string& name, const std::string& lines) {
    test::writeFile(Desktop::folder() + "/own/applications/" + name,
                    "[Desktop Entry]\nType=Application\nExec=/bin/true %U\n" + lines);
  }
  void installModule(const std::string& folder) const {
    test::writeFile(libraries_ / (folder + "/" + menu_module::name + ".so"), "module");
  }
  PropertyList::Array disabled() { return suite_->arrayForKey(file_manager::disabledSetting); }
  State stateOf(const std::string& identifier) {
    for (const ExtensionHost& host : controller_.hosts()) {
      if (host.identifier == identifier) return host.state;
    }
    throw std::runtime_error(identifier + " is not installed");
  }

  test::TemporaryFolder libraries_;
  FakeLog log_;
  FakeUserDefaultsProvider userDefaults_;
  std::unique_ptr<UserDefaults> suite_ = userDefaults_.suite(group);
  LinuxExtensionController controller_{userDefaults_, group, {libraries_.path()}, log_};
};

TEST_F(ExtensionControllerTest, knowsNothingWhereNoFileManagerIs) {
  installModule(menu_module::nautilusFolder);
  EXPECT_THAT(controller_.hosts(), IsEmpty());
  EXPECT_FALSE(controller_.isExtensionEnabled());
}

TEST_F(ExtensionControllerTest, findsFileManagersByEntryOrProgramAndTellsTheirModules) {
  installEntry("org.gnome.Nautilus.desktop", "Name=Files\n");
  installEntry("nemo.desktop", "Name=Files\n");
  installEntry("caja.desktop", "Name=Caja\nNoDisplay=true\n");
  installEntry("caja-browser.desktop", "Name=Caja File Browser\n");
  installEntry("org.kde.dolphin.desktop", "Name=Dolphin\nTryExec=no-such-program\n");
  installProgram("thunar");
  installModule(menu_module::nemoFolder);
  installModule(menu_module::thunarFolder);
  std::filesystem::create_directories(
      libraries_ / (std::string(menu_module::cajaFolder) + "/" + menu_module::name + ".so"));
  EXPECT_THAT(controller_.hosts(),
              ElementsAre(ExtensionHost{"nautilus", "Files (Nautilus)", State::Missing},
                          ExtensionHost{"nemo", "Files (Nemo)", State::On},
                          ExtensionHost{"caja", "Caja File Browser", State::Missing},
                          ExtensionHost{"thunar", "Thunar", State::On}));
  EXPECT_TRUE(controller_.isExtensionEnabled());
}

TEST_F(ExtensionControllerTest, switchesEachFileManagerInTheGroup) {
  for (const char* program : {"nautilus", "thunar"}) installProgram(program);
  installModule(menu_module::nautilusFolder);
  installModule(menu_module::thunarFolder);
  suite_->setObject(PropertyList::Array{"other", 7}, file_manager::disabledSetting);
  for (const bool again : {false, true}) {
    controller_.setEnabled("thunar", false);
    EXPECT_EQ(disabled(), (PropertyList::Array{"other", 7, "thunar"})) << again;
  }
  EXPECT_EQ(stateOf("thunar"), State::Off);
  EXPECT_EQ(stateOf("nautilus"), State::On);
  EXPECT_TRUE(controller_.isExtensionEnabled());
  controller_.setEnabled("nautilus", false);
  EXPECT_FALSE(controller_.isExtensionEnabled());
  controller_.setEnabled("thunar", true);
  EXPECT_EQ(disabled(), (PropertyList::Array{"other", 7, "nautilus"}));
  EXPECT_EQ(stateOf("thunar"), State::On);
  suite_->setObject("no array", file_manager::disabledSetting);
  EXPECT_EQ(stateOf("nautilus"), State::On);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ExtensionControllerTest, heedsTheListOfNemoAndNeedsNoneOfCaja) {
  for (const char* program : {"nemo", "caja"}) installProgram(program);
  installModule(menu_module::nemoFolder);
  installModule(menu_module::cajaFolder);
  const GObjectPointer<GSettings> nemo(g_settings_new(nemoSettings));
  const char* off[] = {"Other", menu_module::nemoType, "NemoShare", nullptr};
  ASSERT_TRUE(g_settings_set_strv(nemo.get(), disabledExtensions, off));
  EXPECT_EQ(stateOf("nemo"), State::Off);
  EXPECT_EQ(stateOf("caja"), State::On);
  controller_.setEnabled("nemo", false);
  controller_.setEnabled("nemo", true);
  const GLibPointer<char*> left(g_settings_get_strv(nemo.get(), disabledExtensions));
  EXPECT_THAT(std::vector<std::string>(left.get(), left.get() + g_strv_length(left.get())),
              ElementsAre("Other", "NemoShare"));
  EXPECT_EQ(stateOf("nemo"), State::On);
  controller_.setEnabled("caja", false);
  controller_.setEnabled("caja", true);
  EXPECT_EQ(stateOf("caja"), State::On);
}

TEST_F(ExtensionControllerTest, heedsTheContextMenuPageOfDolphinAndItsPluginFolders) {
  installProgram("dolphin");
  EXPECT_EQ(stateOf("dolphin"), State::Missing);
  const test::TemporaryFolder plugins;
  test::setVariable("QT_PLUGIN_PATH", "relative::/no/such:" + plugins.path());
  test::writeFile(plugins / ("kf6/kfileitemaction/" + std::string(menu_module::name) + ".so"), "");
  EXPECT_EQ(stateOf("dolphin"), State::On);
  const std::string file = Desktop::folder() + "/config/kservicemenurc";
  const std::string key = std::string("\n") + menu_module::name + "=";
  for (const char* value : {"false", "False", "0", "off"}) {
    test::writeFile(file, "[Other]\nkey[de]=Wert\n\n[Show]\nother=false" + key + value + "\n");
    EXPECT_EQ(stateOf("dolphin"), State::Off) << value;
  }
  controller_.setEnabled("dolphin", true);
  EXPECT_EQ(stateOf("dolphin"), State::On);
  EXPECT_EQ(test::readFile(file), "[Other]\nkey[de]=Wert\n\n[Show]\nother=false" + key + "true\n");
  test::writeFile(file, "no settings\n");
  EXPECT_EQ(stateOf("dolphin"), State::On);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ExtensionControllerTest, tellsWhatItCannotSwitchOn) {
  installProgram("dolphin");
  installModule(menu_module::dolphinKf5Folder);
  const std::string file = Desktop::folder() + "/config/kservicemenurc";
  const std::string off = std::string("[Show]\n") + menu_module::name + "=false\n";
  test::writeFile(file, off);
  {
    const FullDisk full;
    controller_.setEnabled("dolphin", true);
  }
  EXPECT_EQ(stateOf("dolphin"), State::Off);
  EXPECT_EQ(test::readFile(file), off);
  ASSERT_EQ(log_.lines().size(), 1U);
  EXPECT_THAT(log_.lines().front(), HasSubstr(file));
}

TEST_F(ExtensionControllerTest, drawsTheIconThatTheEntryNames) {
  QImage red(8, 8, QImage::Format_RGB32);
  red.fill(Qt::red);
  const std::string image = libraries_ / "red.png";
  ASSERT_TRUE(red.save(QString::fromStdString(image)));
  installEntry("nemo.desktop", "Name=Nemo\nIcon=" + image + "\n");
  installProgram("caja");
  const auto colourOf = [this](const char* identifier) {
    const auto icon = controller_.iconOfHost(identifier, 40);
    QImage picture;
    picture.loadFromData(icon->data(), static_cast<int>(icon->size()), "png");
    EXPECT_EQ(picture.size(), QSize(40, 40)) << identifier;
    return picture.pixelColor(20, 20);
  };
  EXPECT_EQ(colourOf("nemo"), QColor(Qt::red));
  EXPECT_EQ(colourOf("caja").alpha(), 255) << "a drawing of ours";
}

TEST_F(ExtensionControllerTest, tellsOfChangesByOthersAndShowsItsInterface) {
  int changes = 0;
  const Observation observation = controller_.observeHosts([&] { ++changes; });
  userDefaults_.changeFromElsewhere(group, file_manager::disabledSetting,
                                    PropertyList::Array{"nemo"});
  userDefaults_.processChanges();
  EXPECT_EQ(changes, 1);
  int shows = 0;
  controller_.setManagementInterface([&] { ++shows; });
  controller_.showExtensionManagementInterface();
  controller_.setManagementInterface({});
  EXPECT_THAT(log_.lines(), IsEmpty());
  controller_.showExtensionManagementInterface();
  EXPECT_EQ(shows, 1);
  EXPECT_EQ(log_.lines().size(), 1U);
}

}  // namespace
}  // namespace tavrin
