#include "tests/support/FakeSavePanels.h"

#include <utility>

namespace tavrin {

class FakeSavePanels::Panel final : public SavePanel {
 public:
  explicit Panel(FakeSavePanels& owner) : owner_(owner) {}

  void setLevel(int level) override { settings_->level = level; }
  void setAllowsOtherFileTypes(bool flag) override { settings_->allowsOtherFileTypes = flag; }
  void setTitle(const std::string& title) override { settings_->title = title; }
  void setDirectoryURL(const FileURL& url) override { settings_->directory = url; }
  void setNameFieldStringValue(const std::string& name) override { settings_->name = name; }
  void setAllowedFileTypes(const std::vector<std::string>& extensions) override {
    settings_->allowedFileTypes = extensions;
  }
  void validateVisibleColumns() override {
    settings_->validated.push_back(settings_->allowedFileTypes);
  }
  void setAccessoryView(const PopUpAccessory& accessory) override {
    settings_->accessory = accessory;
  }

  Response runModal() override {
    pick_ = owner_.answer(settings_);
    return pick_ ? Response::OK : Response::Cancel;
  }
  std::optional<FileURL> url() const override {
    return pick_ ? std::optional(FileURL::fileURLWithPath(pick_->path)) : std::nullopt;
  }
  bool mayReplace() const override { return pick_ && pick_->replace == Replace::Yes; }

 private:
  FakeSavePanels& owner_;
  std::shared_ptr<SavePanelSettings> settings_ = std::make_shared<SavePanelSettings>();
  std::optional<Pick> pick_;
};

std::shared_ptr<SavePanel> FakeSavePanels::make() {
  return std::make_shared<Panel>(*this);
}

void FakeSavePanels::answerWithPick(Pick pick) {
  answerWith([pick = std::move(pick)](const SavePanelSettings&) { return pick; });
}

std::optional<FakeSavePanels::Pick> FakeSavePanels::answer(
    const std::shared_ptr<SavePanelSettings>& settings) {
  shown.push_back(settings);
  if (users_.empty()) return std::nullopt;
  const User user = std::move(users_.front());
  users_.pop_front();
  auto pick = user(*settings);
  if (pick && grantPlace) grantPlace(pick->path);
  return pick;
}

}  // namespace tavrin
