#include "shell/lifecycle/AppIconPreference.h"

namespace scrivlet {

AppIconPreference AppIconPreferences::fromRawValue(const QString &rawValue)
{
    if (rawValue == u"dockOnly")
        return AppIconPreference::dockOnly;
    if (rawValue == u"menuOnly")
        return AppIconPreference::menuOnly;
    if (rawValue == u"neither")
        return AppIconPreference::neither;
    if (rawValue == u"trueMenuApp")
        return AppIconPreference::trueMenuApp;
    return AppIconPreference::both;
}

} // namespace scrivlet
