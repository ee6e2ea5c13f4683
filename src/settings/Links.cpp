#include "settings/Links.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr const char* webSite = "https://tavrin.app/";

struct Link {
  LinkAction action;
  /// Below the web site.
  const char* path;
};

constexpr std::array<Link, 18> links{{
    {LinkAction::checkForUpdate, "store?review=write"},
    {LinkAction::gotoOfficialWebsite, ""},
    {LinkAction::TeachingVideo, "videos"},
    {LinkAction::FAQDocument, "faq"},
    {LinkAction::haveAGoodIdea, "support"},
    {LinkAction::technicalSupport, "support"},
    {LinkAction::moreIconMaterial, "icons"},
    {LinkAction::aboutOtherPermissions, "help/permissions"},
    {LinkAction::privacyPolicy, "privacy"},
    {LinkAction::termsOfUse, "terms"},
    {LinkAction::helpAboutService, "help/text-services"},
    {LinkAction::helpAboutNewTemplateFile, "help/templates"},
    {LinkAction::helpServicesOfSystemPreferences, "help/enabling-services"},
    {LinkAction::whatIsNew, "news"},
    {LinkAction::translateTavrin, "translate"},
    {LinkAction::sourceCode, "source"},
    {LinkAction::reportAProblem, "support/report"},
    {LinkAction::license, "license"},
}};

}  // namespace

std::string addressOfLink(LinkAction action) {
  const auto* link = std::find_if(links.begin(), links.end(),
                                  [action](const Link& each) { return each.action == action; });
  return std::string(webSite) + (link == links.end() ? "" : link->path);
}

}  // namespace tavrin
