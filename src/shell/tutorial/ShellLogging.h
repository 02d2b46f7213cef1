#pragma once

#include <QLoggingCategory>

namespace scrivlet {

// Diagnostics of the shell: resets and the switches applied at start.
Q_DECLARE_LOGGING_CATEGORY(lcShell)

} // namespace scrivlet
