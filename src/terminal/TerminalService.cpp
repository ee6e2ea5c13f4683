#include "terminal/TerminalService.h"

namespace tavrin {

TerminalService TerminalService::serviceWithApplicationName(const std::string& applicationName,
                                                            const std::string& serviceDescription,
                                                            const std::string& serviceName,
                                                            const std::string& identifier) {
  return {applicationName, serviceDescription, serviceName, identifier};
}

TerminalService::TerminalService(const std::string& applicationName,
                                 const std::string& serviceDescription,
                                 const std::string& serviceName, const std::string& identifier)
    : applicationName_(applicationName),
      serviceDescription_(serviceDescription),
      serviceName_(serviceName),
      identifier_(identifier) {}

void TerminalService::setApplicationName(const std::string& applicationName) {
  applicationName_ = applicationName;
}

void TerminalService::setServiceDescription(const std::string& serviceDescription) {
  serviceDescription_ = serviceDescription;
}

void TerminalService::setServiceName(const std::string& serviceName) {
  serviceName_ = serviceName;
}

void TerminalService::setIdentifier(const std::string& identifier) {
  identifier_ = identifier;
}

std::string TerminalService::description() const {
  return "<TerminalService: self.applicationName=" + applicationName_ +
         ", self.serviceDescription=" + serviceDescription_ + ", self.serviceName=" + serviceName_ +
         ", self.identifier=" + identifier_ + ">";
}

}  // namespace tavrin
