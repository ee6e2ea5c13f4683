#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <utility>

#include "settings/window/PreferencesProcess.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {
namespace {

/// A stand-in for the program: a script, which tells in the file "told" what it is asked for.
class PreferencesProcessTest : public testing::Test {
 protected:
  void setProgram(const QByteArray& script) {
    const QString path = folder_.filePath(QStringLiteral("program"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\ncd \"$(dirname \"$0\")\"\n" + script);
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    system_.bundle.programPath = path.toStdString();
    window_ = std::make_unique<PreferencesProcess>(system_.platform);
    window_->setClosedAction([this] { ++closed_; });
  }

  QByteArray told() {
    QFile file(folder_.filePath(QStringLiteral("told")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  bool waitUntilTold(const QByteArray& text) {
    return QTest::qWaitFor([&] { return told() == text; });
  }

  QTemporaryDir folder_;
  FakePlatform system_;
  int closed_ = 0;
  std::unique_ptr<PreferencesProcess> window_;
};

TEST_F(PreferencesProcessTest, oneProcessShowsTheWindowHoweverOftenAndEndsWithTheHost) {
  setProgram(
      "echo \"$1\" >>told\nwhile read wish; do echo $wish >>told; echo $wish; done\n"
      "echo end >>told\n");
  EXPECT_FALSE(window_->isVisible());
  window_->makeKeyAndOrderFront();
  window_->makeKeyAndOrderFront();
  EXPECT_TRUE(window_->isVisible());
  EXPECT_TRUE(waitUntilTold("--preferences-window\nshow\nshow\n"));
  window_.reset();
  EXPECT_EQ(told(), "--preferences-window\nshow\nshow\nend\n");
  EXPECT_EQ(closed_, 0);
}

TEST_F(PreferencesProcessTest, aWishThatComesWhileTheWindowClosesOpensItAnew) {
  setProgram(
      "read wish; echo $wish >>told; echo $wish\n"
      "test -e closing && exit\n"
      "touch closing; while test ! -e go; do sleep 0.01; done\n");
  window_->makeKeyAndOrderFront();
  ASSERT_TRUE(waitUntilTold("show\n"));
  window_->makeKeyAndOrderFront();
  QFile(folder_.filePath(QStringLiteral("go"))).open(QIODevice::WriteOnly);
  EXPECT_TRUE(waitUntilTold("show\nshow\n"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return closed_ == 1; }));
  EXPECT_FALSE(window_->isVisible());
}

TEST_F(PreferencesProcessTest, aFaultOfTheWindowIsLoggedAndTheNextWishStartsAgain) {
  setProgram("read wish; echo $wish >>told; kill -SEGV $$\n");
  window_->makeKeyAndOrderFront();
  EXPECT_TRUE(QTest::qWaitFor([&] { return closed_ == 1; }));
  ASSERT_EQ(system_.log.lines().size(), 1U);
  window_->makeKeyAndOrderFront();
  EXPECT_TRUE(waitUntilTold("show\nshow\n"));
}

TEST_F(PreferencesProcessTest, aProgramThatCannotBeStartedIsLogged) {
  setProgram("");
  system_.bundle.programPath = "/no/such/program";
  window_->makeKeyAndOrderFront();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }));
  EXPECT_EQ(system_.log.lines().size(), 1U);
  EXPECT_EQ(closed_, 1);
  system_.bundle.programPath.clear();
  window_->makeKeyAndOrderFront();
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(system_.log.lines().size(), 2U);
}

TEST_F(PreferencesProcessTest, aProgramThatCannotBeStartedIsTriedAgain) {
  setProgram("read wish; echo $wish >>told; echo $wish\n");
  const std::string program = std::exchange(system_.bundle.programPath, "/no/such/program");
  window_->makeKeyAndOrderFront();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !window_->isVisible(); }));
  system_.bundle.programPath = program;
  window_->makeKeyAndOrderFront();
  EXPECT_TRUE(waitUntilTold("show\n"));
}

}  // namespace
}  // namespace tavrin
