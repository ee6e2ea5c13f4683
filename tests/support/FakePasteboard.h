#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Pasteboard.h"

namespace tavrin {

/// Pasteboards in memory.
class FakePasteboards final : public PasteboardProvider {
 public:
  struct Content {
    /// The paths of the URLs; nothing unless a list was written.
    std::optional<std::vector<std::string>> urls;
    std::vector<PasteboardType> types;
    std::optional<std::string> string;
  };

  std::unique_ptr<Pasteboard> pasteboardWithName(const std::string& name) override {
    return std::make_unique<Board>(*this, contents[name]);
  }
  std::unique_ptr<Pasteboard> pasteboardWithUniqueName() override {
    unique.push_back(std::make_unique<Content>());
    return std::make_unique<Board>(*this, *unique.back());
  }

  std::map<std::string, Content> contents;
  /// What was on each pasteboard with a unique name, in order; it is kept for a test to look at.
  std::vector<std::unique_ptr<Content>> unique;
  bool takesContent = true;

 private:
  class Board final : public Pasteboard {
   public:
    Board(FakePasteboards& owner, Content& content) : owner_(owner), content_(content) {}
    void clearContents() override { content_ = {}; }
    Status writeObjects(const std::vector<FileURL>& urls) override {
      if (!owner_.takesContent) return refused();
      content_.urls.emplace();
      for (const FileURL& url : urls) content_.urls->push_back(url.path());
      return success();
    }
    void declareTypes(const std::vector<PasteboardType>& types) override {
      content_ = {};
      content_.types = types;
    }
    Status setString(const std::string& string, PasteboardType type) override {
      if (!owner_.takesContent || content_.types != std::vector{type}) return refused();
      content_.string = string;
      return success();
    }
    std::optional<std::string> stringForType(PasteboardType /*type*/) const override {
      return content_.string;
    }

   private:
    static SystemError refused() {
      return {"write pasteboard", "in memory", std::make_error_code(std::errc::io_error)};
    }
    FakePasteboards& owner_;
    Content& content_;
  };
};

}  // namespace tavrin
