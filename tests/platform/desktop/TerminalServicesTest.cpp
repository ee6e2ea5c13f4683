// Services of terminals, performed with programs that record how they are started.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/LinuxPasteboard.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/LinuxServices.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* tab = "New Terminal Tab at Folder";
constexpr const char* window = "New Terminal at Folder";

class TerminalServicesTest : public testing::Test {
 protected:
  struct Start {
    std::string program, parent, physicalFolder, folder;
    std::vector<std::string> arguments;
  };

  TerminalServicesTest() {
    bundle_.resources["Terminals.plist"] = TAVRIN_TEST_RESOURCES "/Terminals.plist";
    test::setVariable("PATH", folder_ / "bin");
    test::setVariable("TERMINAL", std::nullopt);
    test::setVariable("XDG_CURRENT_DESKTOP", std::nullopt);
    fs::create_directories(place_);
  }
  void TearDown() override {
    test::setVariable("PATH", path_);
    test::setVariable("TERMINAL", std::nullopt);
    test::setVariable("XDG_CURRENT_DESKTOP", std::nullopt);
  }

  /// Installs a program that notes its start.
  std::string install(const std::string& program, const std::string& folder = "bin") {
    std::string path = folder_ / (folder + "/" + program);
    test::writeFile(path,
                    "#!/bin/sh\n"
                    "{ printf '%s\\0' \"${0##*/}\" \"$PPID\" \"$(pwd -P)/\" \"$PWD\" \"$@\"; }"
                    " > '" +
                        notes_ +
                        ".part'\n"
                        "/bin/mv '" +
                        notes_ + ".part' '" + notes_ + "'\n");
    return path;
  }

  bool perform(const std::string& service, const std::string& text) {
    const auto board = pasteboards_.pasteboardWithUniqueName();
    board->declareTypes({PasteboardType::String});
    EXPECT_TRUE(board->setString(text, PasteboardType::String));
    return services_.performService(service, *board);
  }

  Start started() {
    if (!test::waitUntil([&] { return fs::exists(notes_); })) return {};
    std::vector<std::string> words;
    std::string text = test::readFile(notes_);
    fs::remove(notes_);
    for (std::size_t end = 0; (end = text.find('\0')) != std::string::npos;
         text.erase(0, end + 1)) {
      words.push_back(text.substr(0, end));
    }
    if (words.size() < 4) return {};
    return {words[0], words[1], words[2], words[3], {words.begin() + 4, words.end()}};
  }

  std::vector<std::string> argumentsOf(const std::string& service, const std::string& text) {
    EXPECT_TRUE(perform(service, text));
    return started().arguments;
  }

  const std::string path_ = g_getenv("PATH");
  test::TemporaryFolder folder_;
  const std::string notes_ = folder_ / "notes";
  const std::string place_ = folder_ / "a b%f\xff\n'\"$x";
  FakeLog log_;
  FakeBundle bundle_;
  LinuxPropertyListSerialization propertyLists_;
  LinuxPasteboardProvider pasteboards_;
  LinuxServices services_{bundle_, propertyLists_, log_};
};

TEST_F(TerminalServicesTest, openATabOrAWindowAsEachTerminalCan) {
  struct Case {
    const char* program;
    std::vector<std::string> tab;
    std::vector<std::string> window;
  };
  const std::string option = "--working-directory=" + place_;
  const Case cases[] = {
      {"ptyxis", {"--tab", option}, {"--new-window", option}},
      {"kgx", {option}, {option}},
      {"gnome-terminal", {"--tab", option}, {"--window", option}},
      {"konsole", {"--new-tab", "--workdir", place_}, {"--workdir", place_}},
      {"xfce4-terminal", {"--tab", option}, {"--window", option}},
      {"mate-terminal", {"--tab", option}, {"--window", option}},
      {"lxterminal", {option}, {option}},
      {"qterminal", {"--workdir", place_}, {"--workdir", place_}},
      {"tilix", {"--action=app-new-session", option}, {"--action=app-new-window", option}},
      {"terminator", {"--new-tab", option}, {option}},
      {"kitty", {"--directory", place_}, {"--directory", place_}},
      {"alacritty", {"--working-directory", place_}, {"--working-directory", place_}},
      {"foot", {option}, {option}},
      {"wezterm", {"start", "--new-tab", "--cwd", place_}, {"start", "--cwd", place_}},
      {"ghostty", {option}, {option}},
      {"xterm", {}, {}}};
  for (const Case& each : cases) {
    const std::string program = install(each.program);
    EXPECT_EQ(argumentsOf(tab, place_), each.tab) << each.program;
    EXPECT_EQ(argumentsOf(window, place_), each.window) << each.program;
    fs::remove(program);
  }
}

TEST_F(TerminalServicesTest, startTheTerminalInTheFolderAndAsNoChild) {
  install("xterm");
  const std::string link = folder_ / "link";
  fs::create_directory_symlink(place_, link);
  EXPECT_TRUE(perform(window, link + "/"));
  const Start start = started();
  EXPECT_EQ(start.physicalFolder, place_ + "/");
  EXPECT_EQ(start.folder, link + "/");
  EXPECT_NE(start.parent, std::to_string(::getpid()));
}

TEST_F(TerminalServicesTest, takeTheFirstInstalledTerminalAndThatOfTheDesktopBeforeOthers) {
  for (const char* program : {"xterm", "konsole", "xfce4-terminal", "gnome-terminal"}) {
    install(program);
  }
  const auto chosen = [&] {
    EXPECT_TRUE(perform(window, place_));
    return started().program;
  };
  EXPECT_EQ(chosen(), "gnome-terminal");
  test::setVariable("XDG_CURRENT_DESKTOP", "KDE");
  EXPECT_EQ(chosen(), "konsole");
  test::setVariable("XDG_CURRENT_DESKTOP", "ubuntu:XFCE");
  EXPECT_EQ(chosen(), "xfce4-terminal");
  fs::remove(folder_ / "bin/xfce4-terminal");
  EXPECT_EQ(chosen(), "gnome-terminal");
}

TEST_F(TerminalServicesTest, preferTheTerminalThatTheUserOrTheSystemHasChosen) {
  install("gnome-terminal");
  install("konsole.wrapper");
  install("konsole");
  fs::create_symlink(folder_ / "bin/konsole.wrapper", folder_ / "bin/x-terminal-emulator");
  EXPECT_THAT(argumentsOf(tab, place_), ElementsAre("--new-tab", "--workdir", place_));

  const std::string own = install("my-terminal", "opt");
  test::setVariable("TERMINAL", own);
  EXPECT_TRUE(perform(tab, place_));
  Start start = started();
  EXPECT_EQ(start.program, "my-terminal");
  EXPECT_THAT(start.arguments, IsEmpty());
  EXPECT_EQ(start.folder, place_);

  fs::create_symlink(own, folder_ / "bin/alacritty");
  test::setVariable("TERMINAL", "alacritty");
  EXPECT_THAT(argumentsOf(window, place_), ElementsAre("--working-directory", place_));
  test::setVariable("TERMINAL", "no-such-terminal");
  EXPECT_THAT(argumentsOf(window, place_), ElementsAre("--workdir", place_));
}

TEST_F(TerminalServicesTest, failWithoutATerminalAServiceOrAFolder) {
  EXPECT_FALSE(perform(window, place_));
  install("xterm");
  EXPECT_FALSE(perform("New iTerm2 Tab Here", place_));
  EXPECT_FALSE(perform("Services", place_));
  EXPECT_FALSE(perform("", place_));
  EXPECT_FALSE(perform(window, folder_ / "gone"));
  EXPECT_FALSE(perform(window, ""));
  EXPECT_FALSE(perform(window, place_ + std::string("\0x", 2)));
  const auto board = pasteboards_.pasteboardWithUniqueName();
  EXPECT_FALSE(services_.performService(window, *board));
  EXPECT_FALSE(services_.performService(std::nullopt, *board));
  EXPECT_FALSE(fs::exists(notes_));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace

}  // namespace tavrin
