#pragma once

#include "notes/CDNote.h"
#include "notes/Note.h"

namespace scrivlet {

class Clock;

// The two directions between a stored row and the in-memory note.
struct NoteConversion {
    // Builds a note from one row. Nils become what a note can hold: a fresh id, the
    // current time, empty text, no slot. Checklist rows come in `index` order and
    // attachments in `sortOrder` order; rows that tie keep the order they were read in.
    static Note toNote(const CDNote &record, const Clock &clock);

    // Writes a note into its row. Fields the note doesn't carry (change tag, system
    // fields) stay as they are; the child rows are replaced whole, so
    // only their `id`s survive a save. A value that doesn't fit the store's 32 bits can
    // only come from a corrupted index, and stops the program.
    static void writeBack(const Note &note, CDNote &record);

    // The narrowing used for every 32-bit field: fatal when `value` doesn't fit.
    static qint32 narrow(qint64 value, const char *field);
};

} // namespace scrivlet
