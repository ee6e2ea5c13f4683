#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "app/AppDelegate.h"
#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

struct Bitmap {
  int pixels;
  const char* fileName;
};

constexpr std::array<Bitmap, 10> macBitmaps{{{16, "icon_16x16.png"},
                                             {32, "icon_16x16@2x.png"},
                                             {32, "icon_32x32.png"},
                                             {64, "icon_32x32@2x.png"},
                                             {128, "icon_128x128.png"},
                                             {256, "icon_128x128@2x.png"},
                                             {256, "icon_256x256.png"},
                                             {512, "icon_256x256@2x.png"},
                                             {512, "icon_512x512.png"},
                                             {1024, "icon_512x512@2x.png"}}};

constexpr std::array<int, 20> iosSizes{29, 40,  48,  50,  55,  57,  58,  72,  76,  80,
                                       87, 100, 114, 120, 144, 153, 160, 172, 180, 196};

/// The whole quoting rule of the scripts: blanks and parentheses, and nothing else.
std::string quotedForScript(std::string_view path) {
  std::string quoted;
  for (const char character : path) {
    if (character == ' ' || character == '(' || character == ')') quoted += '\\';
    quoted += character;
  }
  return quoted;
}

std::string scaleCommand(int pixels, const std::string& image, const std::string& folder,
                         const std::string& fileName) {
  const std::string size = std::to_string(pixels);
  return "sips -z " + size + " " + size + " " + image + " -o " + folder + "/" + fileName;
}

std::string macScript(const std::string& image, const std::string& folder) {
  std::string script;
  for (const Bitmap& bitmap : macBitmaps) {
    if (!script.empty()) script += "\n";
    script += scaleCommand(bitmap.pixels, image, folder, bitmap.fileName);
  }
  return script;
}

std::string compileTail(const std::string& folder) {
  const std::string iconSet = folder + ".iconset";
  return ";mv " + folder + " " + iconSet + ";iconutil -c icns " + iconSet + ";rm -R " + iconSet;
}

std::string iosScript(const std::string& image, const std::string& folder) {
  std::string script;
  for (const int pixels : iosSizes) {
    const std::string size = std::to_string(pixels);
    script += scaleCommand(pixels, image, folder, "icon_" + size + "x" + size + ".png") + "\n";
  }
  return script;
}

}  // namespace

void AppDelegate::imageToIconSetForMac(const ActionRequest& request) {
  makeIconSet(request, "(Mac)", [this](const std::string& image, const std::string& folder) {
    const bool compiles = standardUserDefaults_->boolForKey(settings_key::enableImageToIconInMac);
    return macScript(image, folder) + (compiles ? compileTail(folder) : "");
  });
}

void AppDelegate::imageToIconSetForiOS(const ActionRequest& request) {
  makeIconSet(request, "(iOS)", iosScript);
}

void AppDelegate::makeIconSet(const ActionRequest& request, const std::string& suffix,
                              const IconSetScript& scriptFor) {
  const std::string file = request.stringForKey(request_key::file).value_or("");
  if (!file.starts_with('/')) return logFailure("the request has no path of an image");
  const std::string folder = deletingLastPathComponent(file);
  const bool granted = fileAccess_->accessFilePath(folder, PersistPermission::Yes, [&] {
    const std::string name = deletingPathExtension(lastPathComponent(file));
    const std::string output = uniquePathForPath(
        folder + "/" + name + suffix, [this](const std::string& path) { return itemExists(path); });
    const Status created = platform_.fileManager.createDirectoryAtPath(
        output, FileManager::IntermediateDirectories::Create);
    if (!created) logFailure(created.error().describe());
    const auto ended =
        platform_.shell.system(scriptFor(quotedForScript(file), quotedForScript(output)), folder);
    if (!ended) logFailure(ended.error().describe());
    if (successSound_) successSound_->play();
  });
  if (!granted) logFailure("no access to the folder of " + file);
}

}  // namespace tavrin
