#pragma once

#include <QLoggingCategory>

namespace scrivlet {

// Diagnostics of checklist notes. Rebuilds run on keystrokes, so the step-by-step lines
// are debug messages; a checklist that fell out of step with its text is critical.
Q_DECLARE_LOGGING_CATEGORY(lcChecklist)

} // namespace scrivlet
