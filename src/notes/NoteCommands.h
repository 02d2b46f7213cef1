#pragma once

#include "shell/preferences/NotesPreferences.h"

#include <QtGlobal>

namespace scrivlet {

class CoreDataNotesManager;
class NotificationBus;
class SettingsStore;

// The user's commands on notes, in front of the stack: each knows which pane it acts
// on, refuses what belongs to the stack when the slots are in front, and tidies up
// after a move. `slottedViewActive` says whether the slotted pane holds the focus.
class NoteCommands {
    Q_DISABLE_COPY_MOVE(NoteCommands)

public:
    NoteCommands(CoreDataNotesManager &notes, SettingsStore &settings, NotificationBus &bus);

    // In the split view with the slotted pane active, or with the slots as the main pane.
    bool isInSlottedPane(bool slottedViewActive) const;

    void next(bool slottedViewActive);
    void previous(bool slottedViewActive);
    // `quiet` for requests the user didn't make (a new note on activation).
    void newNote(bool slottedViewActive, bool quiet);
    void deleteOpenNote(bool slottedViewActive);
    void promoteOpenNote(bool slottedViewActive);
    void jumpToFront(bool slottedViewActive);

    void toggleSplit();
    // "Swap Ephemeral vs. Slotted".
    void swapPanes();

private:
    void saveBothPanes();

    CoreDataNotesManager &m_notes;
    NotificationBus &m_bus;
    NotesPreferences m_preferences;
};

} // namespace scrivlet
