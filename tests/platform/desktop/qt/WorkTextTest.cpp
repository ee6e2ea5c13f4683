#include <gtest/gtest.h>

#include <QLocale>
#include <string>

#include "platform/linux/WorkText.h"

namespace tavrin {
namespace {

class WorkTextTest : public testing::Test {
 protected:
  void SetUp() override { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
  void TearDown() override { QLocale::setDefault(QLocale::system()); }

  static std::string summary(const ShownWork& work) { return workSummary(work).toStdString(); }
};

TEST_F(WorkTextTest, saysWhatRunsAndHowFarItIsAsFarAsThatIsKnown) {
  ShownWork work{OperationKind::Copy, "/a/Photos"};
  EXPECT_EQ(summary(work), "Copying “Photos”");
  work.items = 12345;
  work.bytes = 1'234'000'000;
  work.share = 0.4599;
  EXPECT_EQ(summary(work), "Copying “Photos”: 12,345 items · 1.2 GB · 45%");
  work = {OperationKind::Move, "/a/b"};
  work.items = 1;
  EXPECT_EQ(summary(work), "Moving “b”: 1 item");
  work.kind = OperationKind::Remove;
  work.share = 1;
  EXPECT_EQ(summary(work), "Deleting “b”: 1 item · 100%");
}

TEST_F(WorkTextTest, namesItemsOnOneLineAndNotTooLong) {
  EXPECT_EQ(summary({OperationKind::Copy, "/a\nb"}), "Copying “a␊b”");
  EXPECT_EQ(summary({OperationKind::Copy, "/%1 %2 \xff"}), "Copying “%1 %2 \xEF\xBF\xBD”");
  const std::string many(100, 'x');
  EXPECT_EQ(workTitle({OperationKind::Copy, "/b" + many + "e"}).toStdString(),
            "Copying “b" + many.substr(0, 29) + "…" + many.substr(0, 29) + "e”");
  std::string pairs = "b";
  for (int count = 0; count < 60; ++count) pairs += "\U0001F4C1";
  const QString title = workTitle({OperationKind::Copy, "/" + pairs});
  EXPECT_FALSE(title.toStdU32String().find(0xFFFD) != std::u32string::npos);
  EXPECT_TRUE(title.isValidUtf16());
}

}  // namespace
}  // namespace tavrin
