#include "calculation/CalculationLog.h"

namespace scrivlet {

Q_LOGGING_CATEGORY(lcCalculation, "scrivlet.calculation", QtInfoMsg)

} // namespace scrivlet
