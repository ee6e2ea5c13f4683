#include <utility>

#include "foundation/PathString.h"
#include "settings/RuleListEditing.h"

namespace tavrin {

namespace {

constexpr const char* imageType = "png";

/// The items that got no row, and why the first of them did not.
class LeftOut {
 public:
  void add(const SystemError& error) {
    if (count_++ == 0) firstCause_ = error.describe();
  }

  void tell(Log& log) const {
    if (count_ == 0) return;
    log.write(std::to_string(count_) +
              " of the picked items were not added, the first: " + firstCause_);
  }

 private:
  std::size_t count_ = 0;
  std::string firstCause_;
};

}  // namespace

/// What adding rows to one list is about.
struct RuleListEditing::Adding {
  RuleList list;
  /// Where the folder of the first picked item is remembered.
  const char* folderKey;
  Picks picks;
  /// The only type of file that can be picked; nullptr allows every one.
  const char* fileType;
  Result<PropertyList::Dictionary> (RuleListEditing::*record)(const std::string& path);
};

const RuleListEditing::Adding* RuleListEditing::addingOf(RuleList list) {
  static constexpr std::array<Adding, 4> addings{{
      {RuleList::CreateNewFile, settings_key::prePathOfCreateNewFile, Picks::Files, nullptr,
       &RuleListEditing::recordOfTemplate},
      {RuleList::CopyFilesTo, settings_key::prePathOfSendFilesTo, Picks::Folders, nullptr,
       &RuleListEditing::recordOfFolder},
      {RuleList::CommonPath, settings_key::prePathOfCommonPath, Picks::Folders, nullptr,
       &RuleListEditing::recordOfFolder},
      {RuleList::CustomIcon, settings_key::prePathOfCustomIcon, Picks::Files, imageType,
       &RuleListEditing::recordOfIcon},
  }};
  for (const Adding& adding : addings) {
    if (adding.list == list) return &adding;
  }
  return nullptr;
}

void RuleListEditing::addRule(RuleList list) {
  const Adding* adding = addingOf(list);
  if (adding == nullptr) return;
  const auto panel = panelFor(adding->picks, startFolder(*adding));
  panel->setAllowsMultipleSelection(true);
  if (adding->fileType != nullptr) panel->setAllowedFileTypes({adding->fileType});
  begin(panel, [this, adding](const auto& urls) { appendRows(*adding, urls); });
}

void RuleListEditing::selectPath(std::size_t row) {
  if (recordAt(RuleList::CopyFilesTo, row) == nullptr) return;
  const auto panel = panelFor(Picks::Folders, desktop());
  panel->setAllowsMultipleSelection(false);
  begin(panel, [this, row](const auto& urls) {
    if (recordAt(RuleList::CopyFilesTo, row) == nullptr) return;
    setFields(RuleList::CopyFilesTo, row,
              {{record_field::realPath, urls.front().path()}, {record_field::displayName, ""}});
    commit(RuleList::CopyFilesTo);
  });
}

std::shared_ptr<OpenPanel> RuleListEditing::panelFor(Picks picks,
                                                     const std::string& startFolder) const {
  auto panel = platform_.panels.openPanel();
  const bool picksFolders = picks == Picks::Folders;
  panel->setCanChooseFiles(!picksFolders);
  panel->setCanChooseDirectories(picksFolders);
  panel->setCanCreateDirectories(picksFolders);
  panel->setDirectoryURL(FileURL::fileURLWithPath(startFolder));
  return panel;
}

void RuleListEditing::begin(const std::shared_ptr<OpenPanel>& panel, Picked picked) {
  // A strong reference in its own completion would keep the panel for ever.
  panel->beginSheetModalForWindow(
      nullptr,
      [weakPanel = std::weak_ptr<OpenPanel>(panel), alive = std::weak_ptr<const bool>(alive_),
       picked = std::move(picked)](OpenPanel::Response response) {
        const auto ended = weakPanel.lock();
        if (response != OpenPanel::Response::OK || !ended || alive.expired()) return;
        const auto urls = ended->urls();
        if (!urls.empty()) picked(urls);
      });
}

std::string RuleListEditing::desktop() const {
  return realHomePath(platform_.bundle.account()) + "/Desktop";
}

std::string RuleListEditing::startFolder(const Adding& adding) const {
  const std::string remembered =
      standardUserDefaults_.stringForKey(adding.folderKey).value_or(std::string());
  return remembered.starts_with('/') ? remembered : desktop();
}

void RuleListEditing::appendRows(const Adding& adding, const std::vector<FileURL>& urls) {
  LeftOut leftOut;
  for (const FileURL& url : urls) {
    auto record = (this->*adding.record)(url.path());
    if (record) {
      workingLists_.list(adding.list).emplace_back(std::move(record).value());
    } else {
      leftOut.add(record.error());
    }
  }
  leftOut.tell(platform_.log);
  standardUserDefaults_.setObject(deletingLastPathComponent(urls.front().path()), adding.folderKey);
  commit(adding.list);
}

Result<PropertyList::Dictionary> RuleListEditing::recordOfTemplate(const std::string& path) {
  const Status added = templateFiles_.add(path);
  if (!added) return added.error();
  return PropertyList::Dictionary{
      {record_field::enable, yesText},
      {record_field::displayName, deletingPathExtension(lastPathComponent(path))},
      {record_field::extension, pathExtension(path)},
      {record_field::modified, yesText}};
}

Result<PropertyList::Dictionary> RuleListEditing::recordOfFolder(const std::string& path) {
  return PropertyList::Dictionary{
      {record_field::enable, 1},
      {record_field::realPath, abbreviatingHome(path, realHomePath(platform_.bundle.account()))},
      {record_field::displayName, ""}};
}

Result<PropertyList::Dictionary> RuleListEditing::recordOfIcon(const std::string& path) {
  // What is picked as a link is granted as the file that it leads to.
  const auto image =
      platform_.images.imageWithContentsOfFile(platform_.fileManager.resolvingSymlinksInPath(path));
  if (!image) return image.error();
  auto tiff = image.value()->tiffRepresentation();
  if (!tiff) return tiff.error();
  return PropertyList::Dictionary{{record_field::enable, 1},
                                  {record_field::icon, std::move(tiff).value()},
                                  {record_field::displayName, lastPathComponent(path)},
                                  {record_field::modified, yesText}};
}

}  // namespace tavrin
