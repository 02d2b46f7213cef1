#pragma once

#include <QString>

namespace scrivlet {

// The five ways Scrivlet presents itself, stored as `appIconPreference`.
//
// | value         | main window           | dock icon | status item            |
// | `dockOnly`    | yes, shown at start   | yes       | no                     |
// | `menuOnly`    | yes, hidden at start  | no        | yes, toggles the window|
// | `both`        | yes, shown at start   | yes       | yes, toggles the window|
// | `neither`     | yes, hidden at start  | no        | no                     |
// | `trueMenuApp` | none                  | no        | yes, opens a popover   |
enum class AppIconPreference { dockOnly, menuOnly, both, neither, trueMenuApp };

struct AppIconPreferences final {
    // An unknown stored value counts as the default, `both`.
    static AppIconPreference fromRawValue(const QString &rawValue);
    static bool hasMainWindow(AppIconPreference preference) { return preference != AppIconPreference::trueMenuApp; }
    static bool showsWindowAtStart(AppIconPreference preference)
    {
        return preference == AppIconPreference::dockOnly || preference == AppIconPreference::both;
    }
};

} // namespace scrivlet
