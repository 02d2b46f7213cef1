#pragma once

#include <QString>

namespace scrivlet {
struct Note;
}

namespace scrivlet::cli {

// Notes as a person reads them at the terminal: one line each, led by the full id that
// the other verbs take, then what the note is about. Notes have no titles, so a note
// is known by its first line with any text.
class NoteListing final {
public:
    static constexpr int kTitleLength = 60;

    // The first line with any text, trimmed and cut to `kTitleLength`; "(empty)" when
    // the note has no text at all.
    static QString title(const QString &content);

    // "* <id>  <title>" for the open note, "  <id>  <title>" for the others.
    static QString stackLine(const Note &note, bool isOpen);
    // "* 3  <id>  <title>": the slot's number first, as its icon shows it.
    static QString slotLine(const Note &note, bool isOpen);
    // "<id>  <title>", and "[slot 3]" before the title for a slotted note.
    static QString searchLine(const Note &note);
    // "<id>  <when it was deleted, local time>  <title>".
    static QString voidLine(const Note &note);
};

} // namespace scrivlet::cli
