#pragma once

#include <QLoggingCategory>

namespace scrivlet {

// Diagnostics of calculation: conversions that can't read their input, the rate
// updates and their requests.
Q_DECLARE_LOGGING_CATEGORY(lcCalculation)

} // namespace scrivlet
