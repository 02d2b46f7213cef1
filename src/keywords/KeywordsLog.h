#pragma once

#include <QLoggingCategory>

namespace scrivlet {

// Diagnostics of the keyword engine; quiet unless switched on with QT_LOGGING_RULES,
// since the pipeline runs on every keystroke.
Q_DECLARE_LOGGING_CATEGORY(lcKeywords)

} // namespace scrivlet
