#pragma once

#include <string>

namespace tavrin {

/// One service of a terminal application, such as opening a tab at a folder.
class TerminalService {
 public:
  /// A new service, made by the constructor below.
  static TerminalService serviceWithApplicationName(const std::string& applicationName,
                                                    const std::string& serviceDescription,
                                                    const std::string& serviceName,
                                                    const std::string& identifier);

  TerminalService(const std::string& applicationName, const std::string& serviceDescription,
                  const std::string& serviceName, const std::string& identifier);

  /// The display name of the terminal application.
  const std::string& applicationName() const { return applicationName_; }
  void setApplicationName(const std::string& applicationName);

  /// A short label of what the service does.
  const std::string& serviceDescription() const { return serviceDescription_; }
  void setServiceDescription(const std::string& serviceDescription);

  /// The name that the terminal publishes the service under; this is what is performed.
  const std::string& serviceName() const { return serviceName_; }
  void setServiceName(const std::string& serviceName);

  /// The stable key of the service, in reverse-domain form; no bundle identifier.
  const std::string& identifier() const { return identifier_; }
  void setIdentifier(const std::string& identifier);

  /// The class and the four properties, in one line.
  std::string description() const;

 private:
  std::string applicationName_;
  std::string serviceDescription_;
  std::string serviceName_;
  std::string identifier_;
};

}  // namespace tavrin
