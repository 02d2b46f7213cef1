#include "editor/UndoManagement.h"

#include "notes/Note.h"

#include <algorithm>

namespace scrivlet {

namespace {

bool sameLinks(const std::vector<Scrivlink> &a, const std::vector<Scrivlink> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Scrivlink &x, const Scrivlink &y) {
        return x.fullUrl == y.fullUrl && x.shortenedUrl == y.shortenedUrl;
    });
}

bool sameAttachments(const NoteSnippetForUndoManagement &a, const NoteSnippetForUndoManagement &b)
{
    return a.checklistItems == b.checklistItems && sameLinks(a.scrivlinks, b.scrivlinks) &&
           a.skippedURLs == b.skippedURLs;
}

// What ends a word: the step being typed is closed shortly after.
bool endsAWord(const QString &content)
{
    if (content.isEmpty())
        return false;
    static constexpr QStringView kBoundaries = u" .,!?;:\n";
    return kBoundaries.contains(content.back());
}

} // namespace

NoteSnippetForUndoManagement NoteSnippetForUndoManagement::of(const Note &note, const TextRange &selectedRange)
{
    NoteSnippetForUndoManagement snapshot;
    snapshot.content = note.content;
    if (note.checklistManager) {
        snapshot.checklistItems.reserve(note.checklistManager->checklist.size());
        for (const auto &item : note.checklistManager->checklist)
            snapshot.checklistItems.push_back(*item);
    }
    if (note.scrivlinkManager) {
        snapshot.scrivlinks = note.scrivlinkManager->scrivlinks;
        snapshot.skippedURLs = note.scrivlinkManager->skippedURLs;
    }
    snapshot.selectedRange = selectedRange;
    return snapshot;
}

bool operator==(const NoteSnippetForUndoManagement &a, const NoteSnippetForUndoManagement &b)
{
    return a.content == b.content && sameAttachments(a, b);
}

UndoManagement::UndoManagement(Clock &clock) : m_clock(clock), m_wordPause(clock, kWordPause) {}

NoteUndoState *UndoManagement::current()
{
    if (!m_currentNoteId)
        return nullptr;
    auto it = m_noteUndoStates.find(*m_currentNoteId);
    return it == m_noteUndoStates.end() ? nullptr : &*it;
}

const NoteUndoState *UndoManagement::current() const
{
    if (!m_currentNoteId)
        return nullptr;
    auto it = m_noteUndoStates.constFind(*m_currentNoteId);
    return it == m_noteUndoStates.constEnd() ? nullptr : &*it;
}

void UndoManagement::setCurrentNote(const QUuid &noteId, SnapshotSource source, const void *editor)
{
    if ((m_currentNoteId != noteId || m_editor != editor) && m_wordPause.isPending())
        m_wordPause.flush();
    m_currentNoteId = noteId;
    m_source = std::move(source);
    m_editor = editor;
    NoteUndoState &state = m_noteUndoStates[noteId];
    if (state.noteId.isNull()) {
        state.noteId = noteId;
        if (m_source)
            state.latestState = m_source();
    }
    state.lastAccessTime = m_clock.now();
    evict();
}

void UndoManagement::editorClosing(const void *editor)
{
    if (m_editor != editor)
        return;
    if (m_wordPause.isPending())
        m_wordPause.flush();
    m_source = nullptr;
    m_editor = nullptr;
}

void UndoManagement::evict()
{
    if (m_noteUndoStates.size() <= kMaxNotes)
        return;
    std::vector<std::pair<QDateTime, QUuid>> byAccess;
    for (const NoteUndoState &state : std::as_const(m_noteUndoStates)) {
        if (state.noteId != m_currentNoteId)
            byAccess.emplace_back(state.lastAccessTime, state.noteId);
    }
    std::sort(byAccess.begin(), byAccess.end());
    for (const auto &[time, id] : byAccess) {
        if (m_noteUndoStates.size() <= kMaxNotes)
            break;
        m_noteUndoStates.remove(id);
    }
}

void UndoManagement::recordState(const Snapshot &snapshot)
{
    NoteUndoState *state = current();
    if (!state)
        return;
    if (!state->undoStates.empty() && state->undoStates.back() == snapshot)
        return;
    state->undoStates.push_back(snapshot);
    if (state->undoStates.size() > std::size_t(kMaxSteps))
        state->undoStates.erase(state->undoStates.begin());
}

std::optional<UndoManagement::Snapshot> UndoManagement::latestState() const
{
    const NoteUndoState *state = current();
    return state ? state->latestState : std::nullopt;
}

void UndoManagement::setLatestState(const Snapshot &snapshot)
{
    if (NoteUndoState *state = current())
        state->latestState = snapshot;
}

void UndoManagement::clearRedo()
{
    if (NoteUndoState *state = current())
        state->redoStates.clear();
}

bool UndoManagement::canUndo() const
{
    const NoteUndoState *state = current();
    if (!state)
        return false;
    // Typing not yet folded into a step can be undone too.
    return !state->undoStates.empty() || (m_source && state->latestState && !(m_source() == *state->latestState));
}

bool UndoManagement::canRedo() const
{
    const NoteUndoState *state = current();
    return state && !state->redoStates.empty();
}

void UndoManagement::flushAndRegisterUndo()
{
    m_wordPause.cancel();
    NoteUndoState *state = current();
    if (!state || !m_source)
        return;
    Snapshot now = m_source();
    if (!state->latestState) {
        state->latestState = std::move(now);
        return;
    }
    if (now == *state->latestState)
        return;
    recordState(*state->latestState);
    state->redoStates.clear();
    state->latestState = std::move(now);
}

void UndoManagement::textDidChange()
{
    NoteUndoState *state = current();
    if (!state || !state->latestState || !m_source)
        return;
    const Snapshot now = m_source();
    const Snapshot &latest = *state->latestState;
    if (now.content != latest.content) {
        const bool boundary = endsAWord(now.content) || now.content.count(u' ') != latest.content.count(u' ');
        if (boundary) {
            m_wordPause.call([this] { flushAndRegisterUndo(); });
            return;
        }
    }
    // Within a word the step goes on, unless a box or a link changed with the text.
    if (!sameAttachments(now, latest))
        flushAndRegisterUndo();
}

std::optional<UndoManagement::Snapshot> UndoManagement::undo()
{
    return step(&NoteUndoState::undoStates, &NoteUndoState::redoStates);
}

std::optional<UndoManagement::Snapshot> UndoManagement::redo()
{
    return step(&NoteUndoState::redoStates, &NoteUndoState::undoStates);
}

std::optional<UndoManagement::Snapshot> UndoManagement::step(Stack NoteUndoState::*from, Stack NoteUndoState::*to)
{
    // What was typed since the last step is a step first; after an undo it is a new one,
    // and a new step leaves nothing to redo.
    flushAndRegisterUndo();
    NoteUndoState *state = current();
    if (!state || (state->*from).empty() || !state->latestState)
        return std::nullopt;
    (state->*to).push_back(*state->latestState);
    state->latestState = std::move((state->*from).back());
    (state->*from).pop_back();
    return state->latestState;
}

} // namespace scrivlet
