#include "menu/CommandRules.h"

#include <algorithm>
#include <array>

#include "foundation/ActionNames.h"
#include "menu/MenuItem.h"
#include "settings/CommandNames.h"

namespace tavrin {

namespace {

namespace action = action_name;
namespace command = command_name;
using Items = CommandRule::Items;
using Folder = CommandRule::Folder;

constexpr std::array rules{
    CommandRule{command::cut, "cut", Items::All, action::cutSelectedFiles, Folder::None, nullptr},
    CommandRule{command::paste, "paste", Items::None, nullptr, Folder::AnyToPasteInto,
                action::pasteSelectedFiles},
    CommandRule{command::copyPath, "copy-path", Items::All, menu_action::copyPath, Folder::InView,
                menu_action::copyPath},
    CommandRule{command::openInTerminal, "terminal", Items::None, nullptr, Folder::Any,
                menu_action::openInTerminal},
    CommandRule{command::openInITerm2, "iterm2", Items::None, nullptr, Folder::Any,
                menu_action::openInTerminal},
    CommandRule{command::openInVSCode, "vscode", Items::Few, action::openFileInVSCode, Folder::Any,
                action::openInVSCode},
    CommandRule{command::openInIDEA, "idea", Items::Few, action::openFileInIDEA, Folder::Any,
                action::openInIDEA},
    CommandRule{command::openInSublimeText, "sublime-text", Items::Few,
                action::openFileInSublimeText, Folder::Any, action::openInSublimeText},
    CommandRule{command::openInEmacs, "emacs", Items::Few, action::openFileInEmacs, Folder::Any,
                action::openInEmacs},
    CommandRule{command::openInFileManager, "file-manager", Items::None, nullptr, Folder::Any,
                action::openCommonPath},
    CommandRule{command::hideSelected, "hide", Items::All, action::hiddenSelectedFiles,
                Folder::None, nullptr},
    CommandRule{command::unhideSelected, "unhide", Items::All, action::unHiddenSelectedFiles,
                Folder::None, nullptr},
    CommandRule{command::hideAll, "hide-all", Items::None, nullptr, Folder::InView,
                action::hiddenAllFilesInPath},
    CommandRule{command::unhideAll, "unhide-all", Items::None, nullptr, Folder::InView,
                action::unhiddenAllFilesInPath},
    CommandRule{command::deleteDirectly, "delete", Items::All, action::deleteDirectlySelectedFiles,
                Folder::None, nullptr},
    CommandRule{command::imageToIconForMac, "icons-mac", Items::Image, action::imageToIconSetForMac,
                Folder::None, nullptr},
    CommandRule{command::imageToIconForIOS, "icons-ios", Items::Image, action::imageToIconSetForiOS,
                Folder::None, nullptr},
};

constexpr CommandRule pinning{command::snapvane,     "pin",        Items::Images,
                              action::pinbySnapvane, Folder::None, nullptr};

}  // namespace

const CommandRule* ruleOfCommand(std::string_view command) {
  const auto* rule = std::find_if(rules.begin(), rules.end(),
                                  [command](const auto& each) { return each.command == command; });
  if (rule != rules.end()) return rule;
  return command.find(pinning.command) == command.npos ? nullptr : &pinning;
}

}  // namespace tavrin
