#pragma once

namespace scrivlet {

class Clock;
class KeywordDefinitionsContainer;
class MiscPreferences;
class NotificationBus;
class VisualPreferences;

// The shared objects every open editor works with. The app (or a command-line run)
// makes each of them once; editors only hold references.
struct EditorContext {
    KeywordDefinitionsContainer &keywords;
    VisualPreferences &visualPreferences;
    MiscPreferences &miscPreferences;
    NotificationBus &bus;
    Clock &clock;
};

} // namespace scrivlet
