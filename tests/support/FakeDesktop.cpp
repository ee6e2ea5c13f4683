#include "tests/support/FakeDesktop.h"

#include <algorithm>

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
  void setAllowedFileTypes(std::vector<std::string> extensions) override {
    settings_.allowedFileTypes = std::move(extensions);
  }

  Response runModal() override {
    urls_ = owner_.answer(settings_);
    return urls_.empty() ? Response::Cancel : Response::OK;
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

namespace {

std::string inLowerCase(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return text;
}

/// A pick in a panel that chooses folders may be one, which has no type.
bool hasAllowedType(const PanelSettings& settings, const std::string& path) {
  const auto& types = settings.allowedFileTypes;
  if (types.empty() || settings.canChooseDirectories.value_or(false)) return true;
  const std::string type = inLowerCase(pathExtension(path));
  return std::any_of(types.begin(), types.end(),
                     [&type](const std::string& allowed) { return inLowerCase(allowed) == type; });
}

}  // namespace

std::shared_ptr<OpenPanel> FakePanels::openPanel() {
  return std::make_shared<Panel>(*this);
}

void FakePanels::answerWithPath(std::string path) {
  answerWith([path = std::move(path)](const PanelSettings&) { return path; });
}

void FakePanels::answerWithPaths(std::vector<std::string> paths) {
  users_.emplace_back([paths = std::move(paths)](const PanelSettings& settings) {
    const bool mayPickAll = paths.size() < 2 || settings.allowsMultipleSelection.value_or(false);
    return mayPickAll ? paths : std::vector<std::string>();
  });
}

void FakePanels::answerWith(User user) {
  users_.emplace_back([user = std::move(user)](const PanelSettings& settings) {
    const auto path = user(settings);
    return path ? std::vector{*path} : std::vector<std::string>();
  });
}

std::vector<FileURL> FakePanels::answer(const PanelSettings& settings) {
  shown.push_back(settings);
  if (users_.empty()) return {};
  const auto user = std::move(users_.front());
  users_.pop_front();
  std::vector<FileURL> urls;
  for (const std::string& path : user(settings)) {
    const FileURL url = FileURL::fileURLWithPath(path);
    const auto* rule = settings.delegate;
    const bool isEnabled = rule == nullptr || rule->panelShouldEnableURL(url);
    if (!isEnabled || !hasAllowedType(settings, path)) return {};
    urls.push_back(url);
  }
  for (const FileURL& url : urls) {
    if (grantPicked) grantPicked(url);
  }
  return urls;
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
