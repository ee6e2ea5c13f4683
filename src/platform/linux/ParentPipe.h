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

 private:
  void readWishes();
  void accept(ExternalRequest::Kind kind);

  AcceptedRequests& accepted_;
  QSocketNotifier notifier_;
};

}  // namespace tavrin
