#include "notes/NotesLogging.h"

namespace scrivlet {

Q_LOGGING_CATEGORY(lcNotes, "scrivlet.notes")

} // namespace scrivlet
