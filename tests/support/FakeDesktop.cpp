#include "tests/support/FakeDesktop.h"

#include "foundation/PathString.h"

namespace tavrin {

class FakePanels::Panel final : public OpenPanel, public std::enable_shared_from_this<Panel> {
 public:
  explicit Panel(FakePanels& owner) : owner_(owner) {}

  void setCanCreateDirectories(bool flag) override { settings_.canCreateDirectories = flag; }
  void setCanChooseFiles(bool flag) override { settings_.canChooseFiles = flag; }
  void setCanChooseDirectories(bool flag) override { settings_.canChooseDirectories = flag; }
  void setAllowsMultipleSelection(bool flag) override { settings_.allowsMultipleSelection = flag; }
  void setPrompt(const std::string& prompt) override { settings_.prompt = prompt; }
  void setTitle(const std::string& title) override { settings_.title = title; }
  void setMessage(const std::string& message) override { settings_.message = message; }
  void setShowsHiddenFiles(bool flag) override { settings_.showsHiddenFiles = flag; }
  void setExtensionHidden(bool flag) override { settings_.extensionHidden = flag; }
  void setDirectoryURL(const FileURL& url) override { settings_.directory = url; }
  void setDelegate(const OpenSavePanelDelegate* delegate) override {
    settings_.delegate = delegate;
  }
  void setAccessoryText(const std::string& text) override { settings_.accessoryText = text; }

  Response runModal() override {
    const auto picked = owner_.answer(settings_);
    if (!picked) return Response::Cancel;
    urls_ = {*picked};
    return Response::OK;
  }

  void beginSheetModalForWindow(Window* /*window*/,
                                std::function<void(Response)> completion) override {
    owner_.begun_.push_back([self = shared_from_this(), completion = std::move(completion)] {
      completion(self->runModal());
    });
  }

  std::vector<FileURL> urls() const override { return urls_; }

 private:
  FakePanels& owner_;
  PanelSettings settings_;
  std::vector<FileURL> urls_;
};

std::shared_ptr<OpenPanel> FakePanels::openPanel() {
  return std::make_shared<Panel>(*this);
}

void FakePanels::answerWithPath(std::string path) {
  answerWith([path = std::move(path)](const PanelSettings&) { return path; });
}

std::optional<FileURL> FakePanels::answer(const PanelSettings& settings) {
  shown.push_back(settings);
  if (users_.empty()) return std::nullopt;
  const User user = std::move(users_.front());
  users_.pop_front();
  const auto path = user(settings);
  if (!path) return std::nullopt;
  const FileURL url = FileURL::fileURLWithPath(*path);
  if (settings.delegate != nullptr && !settings.delegate->panelShouldEnableURL(url)) {
    return std::nullopt;
  }
  if (grantPicked) grantPicked(url);
  return url;
}

void FakePanels::endBegunPanel() {
  const auto end = std::move(begun_.front());
  begun_.pop_front();
  end();
}

std::unique_ptr<Sound> FakeSounds::soundWithContentsOfFile(const std::string& path) {
  class Recorder final : public Sound {
   public:
    Recorder(FakeSounds& owner, std::string name) : owner_(owner), name_(std::move(name)) {}
    void setVolume(float /*volume*/) override {}
    void play() override { owner_.played.push_back(name_); }

   private:
    FakeSounds& owner_;
    std::string name_;
  };
  return std::make_unique<Recorder>(*this, lastPathComponent(path));
}

std::unique_ptr<StatusItem> FakeStatusBar::statusItem() {
  class Recorder final : public StatusItem {
   public:
    explicit Recorder(std::shared_ptr<Item> item) : item_(std::move(item)) {}
    void setTemplateImageNamed(const std::string& name) override { item_->image = name; }
    void setMenu(std::vector<MenuItem> menu) override { item_->menu = std::move(menu); }
    void setVisible(bool visible) override { item_->visible = visible; }
    bool isVisible() const override { return item_->visible; }

   private:
    std::shared_ptr<Item> item_;
  };
  items.push_back(std::make_shared<Item>());
  return std::make_unique<Recorder>(items.back());
}

Observation FakeWorkspace::observeWillSleep(std::function<void()> willSleep) {
  sleep = std::move(willSleep);
  return std::make_shared<int>(0);
}

void FakeDistributedNotifications::postNotificationName(const std::string& name) {
  posted.push_back(name);
  const auto [first, last] = observers_.equal_range(name);
  for (auto observer = first; observer != last; ++observer) {
    if (const auto received = observer->second.lock()) (*received)();
  }
}

void FakeDistributedNotifications::postNotificationWithOptions(const std::string& name,
                                                               NotificationOptions posting) {
  options.push_back(posting);
  postNotificationName(name);
}

Observation FakeDistributedNotifications::addObserver(const std::string& name,
                                                      std::function<void()> received) {
  auto observer = std::make_shared<std::function<void()>>(std::move(received));
  observers_.emplace(name, observer);
  return observer;
}

}  // namespace tavrin
