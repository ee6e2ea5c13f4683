#include "platform/linux/LinuxServices.h"

#include "platform/linux/TerminalChoice.h"

namespace tavrin {

bool LinuxServices::performService(const std::optional<std::string>& name, Pasteboard& pasteboard) {
  const PropertyList* place = name ? terminals_.find({"Services", *name}) : nullptr;
  const std::string* placeName = place == nullptr ? nullptr : place->stringIfString();
  const auto folder = pasteboard.stringForType(PasteboardType::String);
  if (placeName == nullptr || !folder || folder->find('\0') != std::string::npos) return false;
  const auto command = chooseTerminal(terminals_, *placeName, *folder);
  return command && launchProgram(command->program, command->arguments, *folder, startupToken_);
}

}  // namespace tavrin
