#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QTest>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "platform/linux/LinuxSound.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A session with no sound server in it.
class LinuxSoundTest : public testing::Test {
 protected:
  LinuxSoundTest() {
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread runs yet.
    ::setenv("PULSE_SERVER", ("unix:" + (folder_ / "no-server")).c_str(), 1);
    ::setenv("PULSE_CLIENTCONFIG", "/dev/null", 1);
    ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
    // NOLINTEND(concurrency-mt-unsafe)
  }

  bool waitForLines(std::size_t count) {
    return QTest::qWaitFor([&] { return log_.lines().size() >= count; });
  }

  test::TemporaryFolder folder_;
  FakeLog log_;
};

TEST_F(LinuxSoundTest, aMissingFileMakesNoSound) {
  LinuxSoundProvider provider(log_, TAVRIN_TEST_MODULES);
  EXPECT_EQ(provider.soundWithContentsOfFile(folder_ / "missing.aiff"), nullptr);
  EXPECT_EQ(provider.soundWithContentsOfFile(folder_.path()), nullptr);
}

TEST_F(LinuxSoundTest, withoutAServerThereIsSilenceAndOneLineInTheLog) {
  {
    LinuxSoundProvider provider(log_, TAVRIN_TEST_MODULES);
    const auto sound = provider.soundWithContentsOfFile(TAVRIN_TEST_SOUND);
    ASSERT_NE(sound, nullptr);
    for (int repeat = 0; repeat < 5; ++repeat) sound->play();
    ASSERT_TRUE(waitForLines(1));
  }
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("sound server")));
}

TEST_F(LinuxSoundTest, whatIsNoSoundIsNamedInTheLogOnce) {
  test::writeFile(folder_ / "text.aiff", "no sound at all");
  {
    LinuxSoundProvider provider(log_, TAVRIN_TEST_MODULES);
    const auto sound = provider.soundWithContentsOfFile(folder_ / "text.aiff");
    ASSERT_NE(sound, nullptr);
    sound->play();
    sound->play();
    ASSERT_TRUE(waitForLines(1));
  }
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("text.aiff")));
}

TEST_F(LinuxSoundTest, withoutTheModuleThereIsSilence) {
  {
    LinuxSoundProvider provider(log_, folder_.path());
    const auto sound = provider.soundWithContentsOfFile(TAVRIN_TEST_SOUND);
    sound->play();
    sound->play();
    ASSERT_TRUE(waitForLines(1));
  }
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("sound module")));
}

TEST_F(LinuxSoundTest, aSoundOutlivesItsProviderInSilence) {
  std::unique_ptr<Sound> sound;
  {
    LinuxSoundProvider provider(log_, folder_.path());
    sound = provider.soundWithContentsOfFile(TAVRIN_TEST_SOUND);
  }
  sound->play();
  EXPECT_THAT(log_.lines(), testing::IsEmpty());
}

TEST_F(LinuxSoundTest, neverHoldsUpTheCaller) {
  // A server that takes the connection and never answers.
  const std::string server = folder_ / "mute";
  test::ChildProcess mute({"python3", "-c",
                           "import socket,sys,time\n"
                           "s=socket.socket(socket.AF_UNIX)\n"
                           "s.bind(sys.argv[1]); s.listen(9); time.sleep(60)",
                           server});
  ASSERT_TRUE(QTest::qWaitFor([&] { return ::access(server.c_str(), F_OK) == 0; }));
  // No sound plays yet.
  ::setenv("PULSE_SERVER", ("unix:" + server).c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  const auto start = std::chrono::steady_clock::now();
  {
    LinuxSoundProvider provider(log_, TAVRIN_TEST_MODULES);
    const auto sound = provider.soundWithContentsOfFile(TAVRIN_TEST_SOUND);
    sound->play();
    sound->play();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace tavrin
