#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

#include "terminal/TerminalServiceRegistry.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class TerminalServices : public testing::Test {
 protected:
  void SetUp() override {
    system_.fileManager.addFile("/home/ada/in/a.txt", "a");
    system_.services.published = {"New Terminal Tab at Folder", "New Terminal at Folder",
                                  "New iTerm2 Tab Here"};
  }

  void install() { system_.launchServices.installed["com.googlecode.iterm2"] = {"second.desktop"}; }

  std::vector<std::string> identifiers() const {
    std::vector<std::string> found;
    for (const TerminalService& service : registry_.services()) {
      found.push_back(service.identifier());
    }
    return found;
  }

  FakePlatform system_;
  const TerminalServiceRegistry registry_{system_.platform};
};

TEST_F(TerminalServices, AreDescribedInOneLine) {
  install();
  std::vector<std::string> lines;
  for (const TerminalService& service : registry_.services()) {
    lines.push_back(service.description());
  }
  EXPECT_THAT(
      lines,
      ElementsAre("<TerminalService: self.applicationName=Terminal, "
                  "self.serviceDescription=Open Terminal Tab, "
                  "self.serviceName=New Terminal Tab at Folder, "
                  "self.identifier=com.apple.terminal.tab>",
                  "<TerminalService: self.applicationName=Terminal, "
                  "self.serviceDescription=Open Terminal Window, "
                  "self.serviceName=New Terminal at Folder, "
                  "self.identifier=com.apple.terminal.window>",
                  "<TerminalService: self.applicationName=iTerm2, "
                  "self.serviceDescription=Open iTerm Tab, self.serviceName=New iTerm2 Tab Here, "
                  "self.identifier=com.googlecode.iterm2.tab>",
                  "<TerminalService: self.applicationName=iTerm2, "
                  "self.serviceDescription=Open iTerm Window, "
                  "self.serviceName=New iTerm2 Window Here, "
                  "self.identifier=com.googlecode.iterm2.window>"));
}

TEST_F(TerminalServices, HoldTheirProperties) {
  auto service = TerminalService::serviceWithApplicationName("one", "two", "three", "four");
  EXPECT_EQ(service.description(),
            "<TerminalService: self.applicationName=one, self.serviceDescription=two, "
            "self.serviceName=three, self.identifier=four>");
  service.setApplicationName("1");
  service.setServiceDescription("2");
  service.setServiceName("");
  service.setIdentifier("4");
  EXPECT_EQ(service.description(),
            "<TerminalService: self.applicationName=1, self.serviceDescription=2, "
            "self.serviceName=, self.identifier=4>");
}

TEST_F(TerminalServices, FollowWhatIsInstalled) {
  EXPECT_THAT(identifiers(), ElementsAre("com.apple.terminal.tab", "com.apple.terminal.window"));
  EXPECT_FALSE(registry_.activeService("com.googlecode.iterm2.window"));
  install();
  EXPECT_THAT(identifiers(),
              ElementsAre("com.apple.terminal.tab", "com.apple.terminal.window",
                          "com.googlecode.iterm2.tab", "com.googlecode.iterm2.window"));
  ASSERT_TRUE(registry_.activeService("com.googlecode.iterm2.window"));
  EXPECT_EQ(registry_.activeService("com.googlecode.iterm2.window")->serviceName(),
            "New iTerm2 Window Here");
  for (const char* other : {"COM.APPLE.TERMINAL.TAB", "com.apple.terminal", "", "Terminal"}) {
    EXPECT_FALSE(registry_.activeService(other)) << other;
  }
}

TEST_F(TerminalServices, ArePerformedWithThePathAsItIsWritten) {
  system_.fileManager.addFolder("/home/ada/a \xff\n%20");
  registry_.executeServiceNamed("New Terminal at Folder", "/home/ada/a \xff\n%20");
  registry_.executeServiceNamed("New Terminal at Folder", "/home/ada/in/");
  registry_.executeServiceAtPath("/home/ada/in", "com.apple.terminal.tab");
  EXPECT_THAT(system_.services.performed,
              ElementsAre(Pair("New Terminal at Folder", "/home/ada/a \xff\n%20"),
                          Pair("New Terminal at Folder", "/home/ada/in/"),
                          Pair("New Terminal Tab at Folder", "/home/ada/in")));
  EXPECT_EQ(system_.pasteboards.unique.size(), 3U);
  EXPECT_THAT(system_.pasteboards.unique[0]->types, ElementsAre(PasteboardType::String));
  EXPECT_THAT(system_.pasteboards.contents, IsEmpty());
  EXPECT_THAT(system_.log.lines(), IsEmpty());
}

TEST_F(TerminalServices, AreNotPerformedWithoutAFolder) {
  for (const std::string& path : {std::string("/home/ada/in/a.txt"), std::string("/home/ada/gone"),
                                  std::string(), std::string(100000, 'x')}) {
    registry_.executeServiceNamed("New Terminal at Folder", path);
    registry_.executeServiceNamed(std::nullopt, path);
    registry_.executeServiceAtPath(path, "no such identifier");
  }
  EXPECT_THAT(system_.services.performed, IsEmpty());
  EXPECT_THAT(system_.pasteboards.unique, IsEmpty());
  EXPECT_THAT(system_.log.lines(), IsEmpty());
}

TEST_F(TerminalServices, SayInOneLineThatTheyCannotBePerformed) {
  registry_.executeServiceNamed("No Such Service", "/home/ada/in");
  registry_.executeServiceNamed("", "/home/ada/in");
  registry_.executeServiceNamed(std::nullopt, "/home/ada/in");
  registry_.executeServiceAtPath("/home/ada/in", "com.googlecode.iterm2.tab");
  system_.pasteboards.takesContent = false;
  registry_.executeServiceAtPath("/home/ada/in", "com.apple.terminal.window");
  EXPECT_THAT(system_.log.lines(),
              ElementsAre("Failed to perform service: No Such Service",
                          "Failed to perform service: ", "Failed to perform service: (null)",
                          "Failed to perform service: (null)",
                          "Failed to perform service: New Terminal at Folder"));
  EXPECT_THAT(system_.services.performed, IsEmpty());
}

TEST(TerminalServiceRegistryInstance, IsOneForAllThreads) {
  static FakePlatform system;
  std::vector<const TerminalServiceRegistry*> seen(8);
  std::vector<std::thread> threads;
  threads.reserve(seen.size());
  for (auto& instance : seen) {
    threads.emplace_back(
        [&instance] { instance = &TerminalServiceRegistry::sharedInstance(system.platform); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::set(seen.begin(), seen.end()).size(), 1U);
  EXPECT_EQ(seen.front()->services().size(), 2U);
}

}  // namespace
}  // namespace tavrin
