#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/linux/LinuxShell.h"
#include "tests/platform/files/PickedItem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeLog.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/TreeBuilder.h"
#include "tests/support/TreeSnapshot.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::TreeBuilder;

std::string textOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

class LinuxShellTest : public ::testing::Test {
 protected:
  LinuxShellTest() {
    fs::create_directory(granted());
    fs::create_directory(outside());
    EXPECT_TRUE(grantByPicking(scope_, granted()));
  }

  std::string granted() const { return scratch_ / "granted"; }
  std::string outside() const { return scratch_ / "outside"; }

  /// The script's exit status; -1 when it was not started.
  int run(const std::string& script) {
    const auto status = shell_.system(script, granted());
    return status ? status.value() : -1;
  }
  /// What the script prints.
  std::string outputOf(const std::string& script) {
    run("{ " + script + "\n} > " + granted() + "/output 2>&1");
    return textOf(granted() + "/output");
  }

  testing::ScratchFolder scratch_;
  FakeLog log_;
  LinuxSecurityScope scope_{{scratch_ / "keys", "", ""}, log_};
  LinuxShell shell_{scope_.startedScopes(), log_, TAVRIN_MODULE_FOLDER};
};

TEST_F(LinuxShellTest, RunsAScriptByTheStandardShellAndTellsItsStatus) {
  EXPECT_EQ(run("exit 0"), 0);
  EXPECT_EQ(run("false;\nexit 7"), 7);
  EXPECT_EQ(run("no-such-program 2>/dev/null"), 127);
  EXPECT_EQ(outputOf("echo one|tr o 0; echo $0"), "0ne\nsh\n");
  EXPECT_TRUE(log_.lines().empty()) << log_.lines().front();
}

TEST_F(LinuxShellTest, TheOutputOfACommandIsReadToItsEnd) {
  EXPECT_EQ(shell_.outputOfCommand("printf 'a\\0b\\n'; echo no >/dev/null; cat; exit 3"),
            std::string("a\0b\n", 4));
  EXPECT_EQ(shell_.outputOfCommand("head -c 300000 /dev/zero").size(), 300000U);
  EXPECT_EQ(shell_.outputOfCommand("echo x > " + outside() + "/made; cat " + outside() + "/made"),
            "x\n");
  EXPECT_EQ(shell_.outputOfCommand("no-such-program 2>/dev/null"), "");
  EXPECT_TRUE(log_.lines().empty());
  EXPECT_EQ(shell_.outputOfCommand(std::string("echo a\0b", 8)), "");
  EXPECT_EQ(log_.lines().size(), 1U);
}

TEST_F(LinuxShellTest, ACommandThatGoesOnWithoutOutputIsNotWaitedForAndLeavesNoZombie) {
  const std::string fifo = scratch_ / "gate";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  // Ends when the gate is opened for writing.
  EXPECT_EQ(shell_.outputOfCommand("echo a; exec >/dev/null; cat " + fifo), "a\n");
  siginfo_t none;
  EXPECT_EQ(::waitid(P_ALL, 0, &none, WEXITED | WNOHANG | WNOWAIT), 0);
  ::close(::open(fifo.c_str(), O_WRONLY));
  int left = 0;
  for (int time = 0; left == 0 && time < 20'000; ++time) {
    ::usleep(1000);
    left = ::waitid(P_ALL, 0, &none, WEXITED | WNOHANG | WNOWAIT);
  }
  EXPECT_EQ(left, -1);
}

TEST_F(LinuxShellTest, TheScriptWorksBelowItsFolder) {
  fs::create_directory_symlink(granted(), scratch_ / "link");
  EXPECT_EQ(
      run("cd " + (scratch_ / "link") +
          " && mkdir -p a/b && echo text > a/b/c && mv a a.set"
          " && mv a.set/b/c moved && mv moved a.set && rm -R a.set/b && echo more >> a.set/moved"),
      0);
  EXPECT_EQ(textOf(granted() + "/a.set/moved"), "text\nmore\n");
  EXPECT_EQ(run("rm -R " + granted() + "/a.set"), 0);
  EXPECT_TRUE(fs::is_empty(granted()));
}

TEST_F(LinuxShellTest, TheScriptFindsTheToolsFirstAndNothingOfTheSession) {
  for (const char* variable : {"DBUS_SESSION_BUS_ADDRESS", "LANG", "LC_ALL"}) {
    ::setenv(variable, "C.UTF-8", 1);  // NOLINT(concurrency-mt-unsafe): no other thread runs
  }
  EXPECT_EQ(outputOf("echo $PATH"), TAVRIN_MODULE_FOLDER "/tools:/usr/bin:/bin\n");
  EXPECT_EQ(outputOf("command -v sips; command -v iconutil"),
            TAVRIN_MODULE_FOLDER "/tools/sips\n" TAVRIN_MODULE_FOLDER "/tools/iconutil\n");
  EXPECT_EQ(outputOf("env | sed 's/=.*//' | sort | tr '\\n' ' '"), "LANG LC_ALL PATH PWD ");
  EXPECT_EQ(outputOf("pwd; cat"), "/\n");
  EXPECT_EQ(outputOf("tty"), "not a tty\n");
}

TEST_F(LinuxShellTest, TheScriptHasNoneOfTheHostsFiles) {
  const FileDescriptor secret(::open((scratch_ / "secret").c_str(), O_CREAT | O_RDWR, 0600));
  ASSERT_TRUE(secret);
  EXPECT_EQ(outputOf("ls /proc/self/fd | tr '\\n' ' '"), "0 1 2 3 ") << "3 is the listing's own";
}

TEST_F(LinuxShellTest, TheHostStaysAsItWas) {
  const auto countDescriptors = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  const auto before = countDescriptors();
  EXPECT_EQ(run("true"), 0);
  EXPECT_EQ(countDescriptors(), before);
  TreeBuilder(outside()).file("new", "the host may still do this");
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

TEST_F(LinuxShellTest, NothingOfTheScriptRunsOn) {
  EXPECT_EQ(run("sleep 1000 & echo $! > " + granted() + "/number"), 0);
  const std::string process = "/proc/" + std::to_string(std::stoi(textOf(granted() + "/number")));
  const auto isGone = [&process] {
    const std::string status = textOf(process + "/stat");
    return status.empty() || status.find(") Z ") != std::string::npos;
  };
  for (int waits = 0; waits < 1000 && !isGone(); ++waits) ::usleep(10'000);
  EXPECT_TRUE(isGone());
}

TEST_F(LinuxShellTest, AFailureToStartHasItsCause) {
  const auto causeOf = [](const Result<int>& result) {
    return result ? std::error_code() : result.error().code;
  };
  const std::string touch = "touch " + granted() + "/ran";
  EXPECT_EQ(causeOf(shell_.system(touch, outside())), std::errc::permission_denied);
  EXPECT_EQ(causeOf(shell_.system(touch, "granted")), std::errc::invalid_argument);
  EXPECT_EQ(causeOf(shell_.system(touch + std::string(1, '\0'), granted())),
            std::errc::invalid_argument);
  EXPECT_EQ(causeOf(shell_.system(touch + std::string(200'000, ' '), granted())),
            std::errc::argument_list_too_long);
  LinuxShell lost(scope_.startedScopes(), log_, scratch_ / "nowhere");
  EXPECT_EQ(causeOf(lost.system(touch, granted())), std::errc::no_such_file_or_directory);
  EXPECT_TRUE(fs::is_empty(granted()));

  TreeBuilder(outside()).file("picked", "one file");
  ASSERT_TRUE(grantByPicking(scope_, outside() + "/picked"));
  EXPECT_EQ(causeOf(shell_.system(touch, outside())), std::errc::permission_denied);
}

TEST_F(LinuxShellTest, TheGrantedFolderIsTheOneThatWasGranted) {
  fs::rename(granted(), scratch_ / "elsewhere");
  fs::create_directory_symlink(outside(), granted());
  run("touch " + granted() + "/new");
  EXPECT_TRUE(fs::is_empty(outside()));
}

/// Scripts that mean harm, with and without the kernel's rules for files.
class HostileScript : public LinuxShellTest, public ::testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    TreeBuilder(outside()).file("file", "precious").folder("folder").file("folder/inner", "x");
    TreeBuilder(granted()).file("own", "own").symbolicLink("out", outside());
  }

  /// Runs a script as the parameter says; false when the system offers no way to protect files.
  bool attack(const std::string& script) {
    if (GetParam()) {
      run(script);
      return true;
    }
    constexpr int unprotected = 1;
    return testing::withoutSystemCall(SYS_landlock_create_ruleset, ENOSYS, [&] {
             run(script);
             const auto lines = log_.lines();
             return !lines.empty() && lines.front().find("not protected") != std::string::npos
                        ? unprotected
                        : 0;
           }) != unprotected;
  }
};

TEST_P(HostileScript, ChangesNothingOutsideItsFolder) {
  const auto before = testing::snapshotOf(outside());
  const std::string out = outside();
  const std::string own = granted();
  for (const std::string& script :
       {"touch " + out + "/new",
        "rm " + out + "/file",
        "rm -R " + out,
        "echo x > " + out + "/file",
        "echo x >> " + out + "/file",
        "mv " + out + "/file " + own,
        "mv " + own + "/own " + out,
        "ln " + out + "/file " + own + "/hard",
        "ln " + own + "/own " + out + "/hard",
        "cp " + own + "/own " + own + "/out/new",
        "mkdir " + out + "/new",
        "mkfifo " + out + "/new",
        "chmod 777 " + out + "/file",
        "chmod -R 777 " + own + "/..",
        "chown 1:1 " + out + "/file",
        "touch -d @0 " + out + "/file",
        "setfattr -n user.a -v b " + out + "/file",
        "setfacl -m u:1:rwx " + out + "/file",
        "truncate -s 0 " + out + "/file",
        "python3 -c 'import os; os.truncate(\"" + out + "/file\", 0)'",
        "python3 -c 'import os; os.utime(\"" + out + "/file\", (0, 0))'",
        "umount -l " + own + "; mount -o remount,rw,bind /; mount -o remount,rw /; touch " + out +
            "/new",
        "unshare -Urm sh -c 'mount -o remount,rw,bind /; touch " + out + "/new'",
        "touch /proc/$PPID/root" + out + "/new; touch /proc/" + std::to_string(::getpid()) +
            "/root" + out + "/new; touch /proc/$PPID/fd/4/../outside/new"}) {
    SCOPED_TRACE(script);
    if (!attack("{ " + script + "\n} 2>/dev/null")) GTEST_SKIP() << "no mounts of its own here";
    ASSERT_EQ(testing::snapshotOf(outside()), before);
  }
  // The proof that scripts ran at all.
  ASSERT_TRUE(attack(": > " + own + "/ran"));
  EXPECT_TRUE(fs::exists(own + "/ran"));
}

TEST_P(HostileScript, EmptiesNoFileByOpeningItForAnythingButWriting) {
  const std::string empty = "python3 -c 'import os; os.open(\"" + granted() + "/own\", ";
  attack(empty + "os.O_RDONLY | os.O_TRUNC)' 2>/dev/null");
  attack(empty + "os.O_WRONLY | os.O_RDWR | os.O_TRUNC)' 2>/dev/null");
  EXPECT_EQ(textOf(granted() + "/own"), "own");
  attack(empty + "os.O_WRONLY | os.O_TRUNC)'");
  EXPECT_EQ(textOf(granted() + "/own"), "");
}

TEST_P(HostileScript, ReachesNoSocket) {
  const FileDescriptor local(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
  sockaddr_un localAddress{AF_UNIX, {}};
  const std::string path = granted() + "/bus";
  std::copy(path.begin(), path.end(), localAddress.sun_path);
  ASSERT_EQ(::bind(local.get(), reinterpret_cast<sockaddr*>(&localAddress), sizeof localAddress),
            0);
  ASSERT_EQ(::listen(local.get(), 5), 0);
  const FileDescriptor remote(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
  sockaddr_in remoteAddress{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
  socklen_t size = sizeof remoteAddress;
  ASSERT_EQ(::bind(remote.get(), reinterpret_cast<sockaddr*>(&remoteAddress), size), 0);
  ASSERT_EQ(::getsockname(remote.get(), reinterpret_cast<sockaddr*>(&remoteAddress), &size), 0);
  ASSERT_EQ(::listen(remote.get(), 5), 0);

  const std::string connect = "python3 -c 'import socket\nsocket.socket(";
  const std::string port = std::to_string(ntohs(remoteAddress.sin_port));
  attack(connect + "socket.AF_UNIX).connect(\"" + path + "\")' 2>/dev/null");
  attack(connect + "socket.AF_INET).connect((\"127.0.0.1\", " + port + "))' 2>/dev/null");
  attack("bash -c 'exec 5<>/dev/tcp/127.0.0.1/" + port + "' 2>/dev/null");
  for (const FileDescriptor* listener : {&local, &remote}) {
    EXPECT_EQ(::accept(listener->get(), nullptr, nullptr), -1);
    EXPECT_EQ(errno, EAGAIN);
  }
}

TEST_P(HostileScript, ReachesNoOtherProcess) {
  const pid_t victim = ::fork();
  if (victim == 0) {
    ::pause();
    ::_exit(0);
  }
  const std::string number = std::to_string(victim);
  attack("kill -9 " + number + " 2>/dev/null");
  attack("renice -n 19 -p " + number + " >/dev/null 2>&1; prlimit --pid " + number +
         " --nofile=0 2>/dev/null");
  EXPECT_EQ(::waitpid(victim, nullptr, WNOHANG), 0) << "it lives";
  EXPECT_EQ(textOf("/proc/" + number + "/limits").find("Max open files            0"),
            std::string::npos);
  attack("cat /proc/" + number + "/environ > " + granted() + "/stolen 2>/dev/null");
  EXPECT_EQ(textOf(granted() + "/stolen"), "");
  ::kill(victim, SIGKILL);
  EXPECT_EQ(::waitpid(victim, nullptr, 0), victim);
}

INSTANTIATE_TEST_SUITE_P(Systems, HostileScript, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "WithLandlock" : "Without"; });

TEST_F(LinuxShellTest, WhatTheSystemLacksIsLoggedOnceAndTheScriptRuns) {
  const auto runTwice = [this] {
    const bool ran = run("exit 3") == 3 && run("exit 4") == 4;
    const auto lines = log_.lines();
    return ran && lines.size() == 1 && lines[0].find("less confined") != std::string::npos ? 0 : 1;
  };
  EXPECT_EQ(testing::withoutSystemCall(SYS_landlock_create_ruleset, ENOSYS, runTwice), 0);
  EXPECT_EQ(testing::withoutSystemCall(SYS_landlock_restrict_self, EPERM, runTwice), 0);
  EXPECT_EQ(testing::withoutSystemCall(SYS_seccomp, ENOSYS,
                                       [&runTwice] {
                                         return testing::withoutSystemCall(
                                             SYS_landlock_create_ruleset, ENOSYS, runTwice);
                                       }),
            0);
}

}  // namespace
}  // namespace tavrin
