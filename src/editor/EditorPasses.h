#pragma once

#include <memory>

namespace scrivlet {

class ChecklistPass;
class NoteEditorSession;
class ScrivlinkPass;
struct EditorContext;

// The editor behaviours that run inside one note's pipeline: the checklist of a list
// note and the short links of every note. The app's editor and the command line make
// one beside each `NoteEditorSession`, and it must not outlive that session.
class EditorPasses final {
public:
    EditorPasses(NoteEditorSession &session, const EditorContext &context);
    ~EditorPasses();
    EditorPasses(const EditorPasses &) = delete;
    EditorPasses &operator=(const EditorPasses &) = delete;

    ChecklistPass &checklists() const { return *m_checklists; }
    ScrivlinkPass &scrivlinks() const { return *m_scrivlinks; }

private:
    std::unique_ptr<ChecklistPass> m_checklists;
    std::unique_ptr<ScrivlinkPass> m_scrivlinks;
};

} // namespace scrivlet
