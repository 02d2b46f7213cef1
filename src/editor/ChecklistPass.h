#pragma once

#include "platform/NotificationBus.h"

#include <QVariantMap>

#include <functional>

namespace scrivlet {

class CheckTriggers;
class ChecklistManager;
class NoteEditorSession;
struct EditorContext;
struct TextPassInput;

// The checklist of a list note in one editor: it gives the session's pipeline its
// checklist steps (rows rebuilt from the text, their positions, the ticked look), and
// turns a click on a box into an edit of the row's text.
class ChecklistPass final {
public:
    ChecklistPass(NoteEditorSession &session, const EditorContext &context);
    ChecklistPass(const ChecklistPass &) = delete;
    ChecklistPass &operator=(const ChecklistPass &) = delete;

    // The rows moved on screen because the editor's layout changed (a new width): their
    // positions are measured again, for the whole note.
    void layoutChanged();

    // Told after every change of the rows or their positions, for the view of the boxes.
    void setChecklistChanged(std::function<void()> handler) { m_changed = std::move(handler); }

private:
    ChecklistManager *manager() const;
    CheckTriggers triggers() const;
    void createCheckboxes(const TextPassInput &input, std::optional<qsizetype> from);
    void assignRanges(const TextPassInput &input, std::optional<qsizetype> from);
    void drawRows(const TextPassInput &input);
    void toggle(const QVariantMap &payload);
    void notifyChanged() const;

    NoteEditorSession &m_session;
    const EditorContext &m_context;
    std::function<void()> m_changed;
    NotificationBus::Subscription m_toggled;
};

} // namespace scrivlet
