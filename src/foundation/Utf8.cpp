#include "foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace tavrin {

namespace {

/// The sequences that begin with one of a range of bytes: how many bytes follow, and what the first
/// of these may be. Those after it go from 0x80 to 0xBF.
struct SequenceForm {
  std::uint8_t firstLead, lastLead;
  std::size_t followers;
  std::uint8_t lowestFollower, highestFollower;
};

constexpr std::array<SequenceForm, 9> sequenceForms{{
    {0x00, 0x7F, 0, 0x80, 0xBF},
    {0xC2, 0xDF, 1, 0x80, 0xBF},
    {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F},
    {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF},
    {0xF4, 0xF4, 3, 0x80, 0x8F},
}};

const SequenceForm* formOf(std::uint8_t lead) {
  const auto* form = std::find_if(
      sequenceForms.begin(), sequenceForms.end(),
      [lead](const auto& each) { return each.firstLead <= lead && lead <= each.lastLead; });
  return form == sequenceForms.end() ? nullptr : form;
}

bool isBetween(char byte, std::uint8_t lowest, std::uint8_t highest) {
  const auto value = static_cast<std::uint8_t>(byte);
  return lowest <= value && value <= highest;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const SequenceForm* form = formOf(static_cast<std::uint8_t>(bytes.front()));
    if (form == nullptr || bytes.size() <= form->followers) return false;
    for (std::size_t index = 1; index <= form->followers; ++index) {
      const bool isFirst = index == 1;
      if (!isBetween(bytes[index], isFirst ? form->lowestFollower : 0x80,
                     isFirst ? form->highestFollower : 0xBF)) {
        return false;
      }
    }
    bytes.remove_prefix(form->followers + 1);
  }
  return true;
}

}  // namespace tavrin
