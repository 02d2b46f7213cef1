#include "editor/ChecklistLog.h"

namespace scrivlet {

Q_LOGGING_CATEGORY(lcChecklist, "scrivlet.editor.checklist", QtInfoMsg)

} // namespace scrivlet
