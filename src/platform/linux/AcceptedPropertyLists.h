#pragma once

#include "platform/linux/AcceptedRequests.h"
#include "platform/linux/LinuxPropertyListSerialization.h"

namespace tavrin {

/// Property lists as LinuxPropertyListSerialization has them, but for files of accepted requests:
/// those read as they were when they were accepted, whatever stands at their path by now. Reading
/// one is the beginning of its handling, so its startup token becomes the current one.
class AcceptedPropertyLists final : public LinuxPropertyListSerialization {
 public:
  /// `accepted` outlives this object.
  explicit AcceptedPropertyLists(AcceptedRequests& accepted) : accepted_(accepted) {}

  Result<PropertyList> propertyListWithContentsOfFile(const std::string& path) override;

 private:
  AcceptedRequests& accepted_;
};

}  // namespace tavrin
