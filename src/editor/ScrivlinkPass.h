#pragma once

#include "editor/ScrivlinkToggle.h"
#include "editor/ScrivlinkUpdate.h"
#include "platform/Debouncer.h"

#include <QString>

#include <chrono>
#include <memory>

namespace scrivlet {

class NoteEditorSession;
class ScrivlinkManager;
struct EditorContext;

// The short links of the note open in one editor: it shortens URLs as they are typed,
// colours links, toggles them on a click and guards short forms against typing. It
// installs itself into the session's pipeline and must not outlive the session.
class ScrivlinkPass final {
public:
    // Notes below this size are updated on every change; longer ones once typing pauses.
    static constexpr qsizetype kDebounceThreshold = 1000;
    static constexpr qsizetype kLongNoteThreshold = 5000;
    static constexpr std::chrono::milliseconds kShortDelay{100};
    static constexpr std::chrono::milliseconds kLongDelay{200};

    // What the editor is to do with a key over a link.
    enum class KeyDecision {
        LetThrough,
        // The key was refused, and the user told why.
        Refused,
        // The whole link is selected, so that the delete key removes it at once.
        LinkSelected,
    };

    ScrivlinkPass(NoteEditorSession &session, const EditorContext &context);
    ~ScrivlinkPass();
    ScrivlinkPass(const ScrivlinkPass &) = delete;
    ScrivlinkPass &operator=(const ScrivlinkPass &) = delete;

    ScrivlinkManager &manager() const;

    // Updates the links now when `flushNow` or the note is short; otherwise after a
    // pause of 0.1 s (0.2 s from 5000 characters on).
    void debouncedUpdateScrivlinks(bool flushNow);
    // Runs a waiting update now.
    void flushPendingUpdate();
    bool hasPendingUpdate() const;

    // A click (or the toggle key) at `position`: a short link is expanded, a full one
    // shortened. Returns whether there was a link.
    bool toggleScrivlinkAt(qsizetype position);
    // The toggle key: the selection collapses to its start, and the link there toggles.
    // With link highlighting off the key does nothing, but still counts as handled.
    void toggleScrivlinkAtCaret();

    // The guard for a key pressed in the note, with an empty `event` for a key that
    // types nothing the guard knows of.
    KeyDecision preventScrivlinkEditing(const std::optional<ScrivlinkKeyPress> &event);

    // The note's text, or a part of it, with every link in full: what a copy carries.
    QString expandedText(const TextRange &range) const;

    // Shows every link of the note in full while `show` holds (the search in a note).
    void setShowsAllLinksInFull(bool show);
    bool showsAllLinksInFull() const { return m_showsAllInFull; }

    // The app suspends text processing for the moment: links are left as they are.
    void setTextProcessingSuspended(bool suspended) { m_processingSuspended = suspended; }

private:
    ScrivlinkSettings settings() const;
    void updateNow();

    NoteEditorSession &m_session;
    const EditorContext &m_context;
    Debouncer m_shortDebouncer;
    Debouncer m_longDebouncer;
    bool m_showsAllInFull = false;
    bool m_processingSuspended = false;
};

} // namespace scrivlet
