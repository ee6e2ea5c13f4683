#pragma once

#include <string>

namespace tavrin {

/// The pages on the web that the preferences window opens, named as the actions that do.
enum class LinkAction {
  checkForUpdate,
  gotoOfficialWebsite,
  TeachingVideo,
  FAQDocument,
  haveAGoodIdea,
  technicalSupport,
  moreIconMaterial,
  aboutOtherPermissions,
  privacyPolicy,
  termsOfUse,
  helpAboutService,
  helpAboutNewTemplateFile,
  helpServicesOfSystemPreferences,
  /// The remaining pages of the last two tabs.
  whatIsNew,
  translateTavrin,
  sourceCode,
  reportAProblem,
  license,
};

/// The address that an action opens.
std::string addressOfLink(LinkAction action);

}  // namespace tavrin
