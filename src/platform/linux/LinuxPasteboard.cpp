#include "platform/linux/LinuxPasteboard.h"

#include <algorithm>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/Identity.h"
#include "platform/linux/ItemNaming.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/PasteboardFile.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr const char* uriListLineEnd = "\r\n";

std::string uriList(const std::vector<FileURL>& urls) {
  std::string list;
  for (const FileURL& url : urls) list += url.absoluteString() + uriListLineEnd;
  return list;
}

class LinuxPasteboard : public Pasteboard {
 public:
  explicit LinuxPasteboard(PasteboardFile file) : file_(std::move(file)) {}

  void clearContents() override {
    types_.clear();
    file_.remove();
  }

  Status writeObjects(const std::vector<FileURL>& urls) override {
    return file_.replace(uriList(urls));
  }

  void declareTypes(const std::vector<PasteboardType>& types) override {
    clearContents();
    types_ = types;
  }

  Status setString(const std::string& string, PasteboardType type) override {
    if (std::ranges::count(types_, type) == 0) {
      return systemError("write pasteboard", "type not declared", std::errc::invalid_argument);
    }
    return file_.replace(string);
  }

  std::optional<std::string> stringForType(PasteboardType /*type*/) const override {
    return file_.contents();
  }

 private:
  PasteboardFile file_;
  std::vector<PasteboardType> types_;
};

class DragPasteboard final : public LinuxPasteboard {
 public:
  DragPasteboard(PasteboardFile file, DragSelection& selection)
      : LinuxPasteboard(std::move(file)), selection_(selection) {}

  void clearContents() override {
    LinuxPasteboard::clearContents();
    selection_.clear();
  }

  Status writeObjects(const std::vector<FileURL>& urls) override {
    Status written = LinuxPasteboard::writeObjects(urls);
    if (written) selection_.setUriList(uriList(urls));
    return written;
  }

 private:
  DragSelection& selection_;
};

class UniquePasteboard final : public LinuxPasteboard {
 public:
  using LinuxPasteboard::LinuxPasteboard;
  UniquePasteboard(const UniquePasteboard&) = delete;
  UniquePasteboard& operator=(const UniquePasteboard&) = delete;
  ~UniquePasteboard() override { LinuxPasteboard::clearContents(); }
};

std::string sessionFolder() {
  const std::string runtime = userRuntimeDirectory();
  if (runtime.empty()) return {};
  return appendingPathComponent(appendingPathComponent(runtime, identity::applicationId),
                                "pasteboards");
}

}  // namespace

LinuxPasteboardProvider::LinuxPasteboardProvider() : folder_(sessionFolder()) {}

std::unique_ptr<Pasteboard> LinuxPasteboardProvider::pasteboardWithName(const std::string& name) {
  PasteboardFile file(folder_, name);
  if (name != pasteboard_name::drag) return std::make_unique<LinuxPasteboard>(std::move(file));
  return std::make_unique<DragPasteboard>(std::move(file), dragSelection_);
}

std::unique_ptr<Pasteboard> LinuxPasteboardProvider::pasteboardWithUniqueName() {
  return std::make_unique<UniquePasteboard>(PasteboardFile(folder_, randomHiddenName("unique")));
}

}  // namespace tavrin
