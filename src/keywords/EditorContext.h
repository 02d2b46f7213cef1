#pragma once

namespace scrivlet {

class Clock;
class ConversionService;
class KeywordDefinitionsContainer;
class MathPreferences;
class MiscPreferences;
class NotificationBus;
class UndoManagement;
class VisualPreferences;

// The shared objects every open editor works with. The app (or a command-line run)
// makes each of them once; editors only hold references.
struct EditorContext {
    KeywordDefinitionsContainer &keywords;
    VisualPreferences &visualPreferences;
    MiscPreferences &miscPreferences;
    NotificationBus &bus;
    Clock &clock;
    // Decimals and grouping of math results; without them, two decimals with grouping.
    const MathPreferences *mathPreferences = nullptr;
    // Unit and currency conversion on math lines; without it no line converts.
    const ConversionService *conversionService = nullptr;
    // The undo history of the app's editors; without it an editor keeps none.
    UndoManagement *undoManagement = nullptr;
};

} // namespace scrivlet
