#pragma once

#include "MathParser/OperatorSet.h"

#include <QLocale>

#include <memory>
#include <optional>

namespace scrivlet::math {

// How the parser reads an expression. The program always uses the shared default; the
// other settings exist for extensions and tests.
struct Configuration {
    std::shared_ptr<const OperatorSet> operatorSet = OperatorSet::shared();
    // Numbers are read in this locale's format when set. Math lines are rewritten to plain
    // "." decimals before they get here, so the default reads the C format.
    std::optional<QLocale> locale;
    bool allowZeroLengthVariables = false;
    bool unescapesQuotedVariables = true;
    // "pi" without parentheses is the call "pi()".
    bool allowArgumentlessFunctions = true;
    // "2pi", "2(3)" and "3!4" multiply.
    bool allowImplicitMultiplication = true;
    // Implicit products bind tighter than "/", so "1/2x" is 1/(2x) as it is read on paper.
    bool useHighPrecedenceImplicitMultiplication = true;

    static const Configuration &shared();
};

} // namespace scrivlet::math
