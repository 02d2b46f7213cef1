#include "keywords/KeywordsLog.h"

namespace scrivlet {

Q_LOGGING_CATEGORY(lcKeywords, "scrivlet.keywords", QtInfoMsg)

} // namespace scrivlet
