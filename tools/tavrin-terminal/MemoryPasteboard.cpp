#include "MemoryPasteboard.h"

#include "platform/linux/SystemErrors.h"

namespace tavrin::terminaltool {

namespace {

class MemoryPasteboard final : public Pasteboard {
 public:
  void clearContents() override { text_.reset(); }

  Status writeObjects(const std::vector<FileURL>& /*urls*/) override {
    return systemError("write pasteboard", "URLs", std::errc::not_supported);
  }

  void declareTypes(const std::vector<PasteboardType>& types) override {
    clearContents();
    isDeclared_ = !types.empty();
  }

  Status setString(const std::string& string, PasteboardType /*type*/) override {
    if (!isDeclared_) {
      return systemError("write pasteboard", "type not declared", std::errc::invalid_argument);
    }
    text_ = string;
    return success();
  }

  std::optional<std::string> stringForType(PasteboardType /*type*/) const override { return text_; }

 private:
  bool isDeclared_ = false;
  std::optional<std::string> text_;
};

}  // namespace

std::unique_ptr<Pasteboard> MemoryPasteboards::pasteboardWithName(const std::string& /*name*/) {
  return pasteboardWithUniqueName();
}

std::unique_ptr<Pasteboard> MemoryPasteboards::pasteboardWithUniqueName() {
  return std::make_unique<MemoryPasteboard>();
}

}  // namespace tavrin::terminaltool
