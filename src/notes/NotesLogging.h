#pragma once

#include <QLoggingCategory>

namespace scrivlet {

// Diagnostics of the note store: opening the file, queries, saves and the queueing of
// saved notes for sync.
Q_DECLARE_LOGGING_CATEGORY(lcNotes)

} // namespace scrivlet
