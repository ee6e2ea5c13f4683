#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QIcon>
#include <QImage>
#include <QPixmapCache>
#include <map>

#include "platform/linux/FileIcon.h"
#include "platform/linux/LinuxDirectories.h"
#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin {
namespace {

constexpr int side = 48;

/// The colours of the theme's icons, by their names.
const std::map<std::string, QColor> colors = {{"places/folder", Qt::red},
                                              {"places/folder-download", Qt::green},
                                              {"places/user-home", Qt::blue},
                                              {"places/drive-harddisk", Qt::cyan},
                                              {"mimetypes/image-x-generic", Qt::magenta},
                                              {"mimetypes/text-x-generic", Qt::yellow}};

/// An icon theme of plain squares and a user with a folder for downloads.
class FileIconTest : public testing::Test {
 protected:
  FileIconTest() {
    test::writeFile(folder_ / "icons/squares/index.theme",
                    "[Icon Theme]\nName=squares\nDirectories=places,mimetypes\n"
                    "[places]\nSize=48\nType=Fixed\n[mimetypes]\nSize=48\nType=Fixed\n");
    for (const auto& [name, color] : colors) addIcon(name, color);
    test::writeFile(folder_ / "config/user-dirs.dirs",
                    "XDG_DOWNLOAD_DIR=\"" + (folder_ / "loads") + "\"\n");
    test::setVariable("XDG_CONFIG_HOME", folder_ / "config");
    QIcon::setThemeSearchPaths({QString::fromStdString(folder_ / "icons")});
    useTheme("squares");
  }
  ~FileIconTest() override {
    useTheme("");
    test::setVariable("XDG_CONFIG_HOME", std::nullopt);
  }

  void addIcon(const std::string& name, const QColor& color) const {
    QImage square(side, side, QImage::Format_ARGB32);
    square.fill(color);
    const std::string path = folder_ / ("icons/squares/" + name + ".png");
    test::writeFile(path, "");
    EXPECT_TRUE(square.save(QString::fromStdString(path)));
  }

  static void useTheme(const char* name) {
    QPixmapCache::clear();
    QIcon::setThemeName(QString::fromLatin1(name));
  }

  static QImage iconOf(const std::string& path, int wanted = side) {
    const auto png = pngOfFileIcon(path, wanted);
    EXPECT_TRUE(png) << path;
    QImage icon;
    EXPECT_TRUE(icon.loadFromData(png.value().data(), static_cast<int>(png.value().size()), "png"));
    return icon;
  }
  static QColor colorOf(const std::string& path) {
    return iconOf(path).pixelColor(side / 2, side / 2);
  }

  test::TemporaryFolder folder_;
};

TEST_F(FileIconTest, foldersHaveTheIconOfTheirKind) {
  EXPECT_EQ(::mkdir((folder_ / "a.txt").c_str(), 0755), 0);
  const std::map<std::string, QColor> folders = {{folder_ / "a.txt", Qt::red},
                                                 {folder_ / "loads", Qt::green},
                                                 {folder_ / "config/../loads/", Qt::green},
                                                 {currentAccount().homeDirectory, Qt::blue},
                                                 {"/", Qt::cyan}};
  for (const auto& [path, color] : folders) EXPECT_EQ(colorOf(path), color) << path;
}

TEST_F(FileIconTest, filesHaveTheIconOfTheirTypeByTheNameAlone) {
  test::writeFile(folder_ / "picture.PNG", "no picture");
  test::writeFile(folder_ / "script", "#!/bin/sh\n");
  EXPECT_EQ(colorOf(folder_ / "picture.PNG"), QColor(Qt::magenta));
  EXPECT_EQ(colorOf(folder_ / "script"), QColor(Qt::yellow));
}

TEST_F(FileIconTest, missingItemsAreToldByTheirNames) {
  EXPECT_EQ(colorOf(folder_ / "gone/picture.png"), QColor(Qt::magenta));
  EXPECT_EQ(colorOf(folder_ / "gone/\xff.unheard-of"), QColor(Qt::yellow));
  EXPECT_EQ(colorOf(folder_ / "gone/folder"), QColor(Qt::red));
  EXPECT_EQ(colorOf(folder_ / "gone/folder.d/"), QColor(Qt::red));
}

TEST_F(FileIconTest, theIconFillsTheSideAskedFor) {
  for (const int wanted : {16, 48, 200}) {
    const QImage icon = iconOf(folder_ / "loads", wanted);
    EXPECT_EQ(icon.size(), QSize(wanted, wanted));
    EXPECT_EQ(icon.pixelColor(1, 1), QColor(Qt::green)) << wanted;
  }
  EXPECT_EQ(iconOf("/", 0).width(), 1);
  EXPECT_EQ(iconOf("/", 1 << 30).width(), 1024);
}

TEST_F(FileIconTest, withoutAThemeItIsADrawing) {
  useTheme("");
  QIcon::setThemeSearchPaths({});
  const QImage folder = iconOf(folder_.path(), 96);
  const QImage file = iconOf(folder_ / "config/user-dirs.dirs", 96);
  EXPECT_EQ(folder.size(), QSize(96, 96));
  EXPECT_EQ(folder.pixelColor(48, 60).alpha(), 255);
  EXPECT_NE(folder, file);
}

}  // namespace
}  // namespace tavrin
