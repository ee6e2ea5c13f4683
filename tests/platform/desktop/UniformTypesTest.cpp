// Types by the shared MIME database of the system.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/linux/LinuxUniformTypes.h"
#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin {

namespace {

class UniformTypesTest : public testing::Test {
 protected:
  UniformTypesTest() {
    const std::string folder = g_get_system_data_dirs()[0];
    std::filesystem::create_directories(folder);
    std::error_code linked;
    std::filesystem::create_directory_symlink("/usr/share/mime", folder + "/mime", linked);
    // GLib looks for new databases now and then.
    EXPECT_TRUE(test::waitUntil([&] { return isImage("png"); }));
  }

  bool isImage(const std::string& extension) {
    const auto type = types_.preferredTypeForFilenameExtension(extension);
    return type && types_.typeConformsTo(*type, uniform_type::image);
  }

  LinuxUniformTypes types_;
};

TEST_F(UniformTypesTest, knowImagesByTheirExtensionInEitherCase) {
  EXPECT_EQ(types_.preferredTypeForFilenameExtension("png"), "image/png");
  EXPECT_EQ(types_.preferredTypeForFilenameExtension("JPG"), "image/jpeg");
  for (const char* extension :
       {"jpg", "JPEG", "gif", "Tiff", "webp", "bmp", "svg", "heic", "ico", "psd", "xcf", "cr2"}) {
    EXPECT_TRUE(isImage(extension)) << extension;
  }
}

TEST_F(UniformTypesTest, takeNothingElseForAnImage) {
  for (const char* extension : {"", "txt", "pdf", "mp4", "tar.gz", "no-such-type", "png ", " png",
                                "pn", "pngx", "a/b.png", "\xff", "png\xff", "*", "?", "[a]", "-"}) {
    EXPECT_FALSE(isImage(extension)) << extension;
  }
  EXPECT_FALSE(isImage(std::string(100000, 'x')));
  EXPECT_EQ(types_.preferredTypeForFilenameExtension("no-such-type"), std::nullopt);
  EXPECT_EQ(types_.preferredTypeForFilenameExtension(""), std::nullopt);
  EXPECT_FALSE(types_.typeConformsTo("image/png", "public.audio"));
  EXPECT_FALSE(types_.typeConformsTo("", uniform_type::image));
}

}  // namespace

}  // namespace tavrin
