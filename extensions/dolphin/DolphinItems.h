#pragma once

#include <KFileItem>

#include "menu/SelectedItems.h"

namespace tavrin {

/// Items that are selected in Dolphin, by the URLs that KIO lists them under.
class DolphinItems final : public SelectedItems {
 public:
  explicit DolphinItems(const KFileItemList& items) : items_(items) {}

  std::size_t count() const override { return static_cast<std::size_t>(items_.size()); }
  /// "" for a name that is no UTF-8, which Qt's URLs cannot hold.
  std::string uri(std::size_t index) const override;
  bool isFolder(std::size_t index) const override { return item(index).isDir(); }
  std::string contentType(std::size_t index) const override;

 private:
  const KFileItem& item(std::size_t index) const;

  const KFileItemList items_;
};

}  // namespace tavrin
