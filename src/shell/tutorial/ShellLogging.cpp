#include "shell/tutorial/ShellLogging.h"

namespace scrivlet {

Q_LOGGING_CATEGORY(lcShell, "scrivlet.shell")

} // namespace scrivlet
