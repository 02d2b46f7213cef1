#include "editor/EditorPasses.h"

#include "editor/ChecklistPass.h"
#include "editor/ScrivlinkPass.h"

namespace scrivlet {

EditorPasses::EditorPasses(NoteEditorSession &session, const EditorContext &context)
    : m_checklists(std::make_unique<ChecklistPass>(session, context)),
      m_scrivlinks(std::make_unique<ScrivlinkPass>(session, context))
{
}

EditorPasses::~EditorPasses() = default;

} // namespace scrivlet
