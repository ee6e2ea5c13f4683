#pragma once

#include <QCoreApplication>
#include <QEventLoopLocker>
#include <optional>

namespace tavrin {

/// Holds back the end that a program comes to with its last window, for as long as this object
/// lives. Nothing else is held back. Without a QCoreApplication it does nothing.
class QuitLock {
 public:
  QuitLock() {
    if (QCoreApplication::instance() != nullptr) lock_.emplace();
  }

 private:
  std::optional<QEventLoopLocker> lock_;
};

}  // namespace tavrin
