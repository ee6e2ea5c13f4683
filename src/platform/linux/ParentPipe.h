#pragma once

#include <QObject>
#include <QSocketNotifier>

#include "platform/linux/AcceptedRequests.h"

namespace tavrin {

/// The standard input of a process that another one started for a window: each line is a wish to
/// see the window, the end of the input is the end of the other process.
class ParentPipe final : public QObject {
 public:
  /// `accepted`, which the wishes go to, outlives this object.
  explicit ParentPipe(AcceptedRequests& accepted);

  /// Whether the standard input is a pipe or a socket: everything else has no end that would tell
  /// of the other process'. To be asked before this process opens anything, which could take its
  /// place.
  static bool isThere();

 private:
  void readWishes();
  void accept(ExternalRequest::Kind kind);

  AcceptedRequests& accepted_;
  QSocketNotifier notifier_;
};

}  // namespace tavrin
