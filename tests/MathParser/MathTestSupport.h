#pragma once

#include "MathParser/MathEngine.h"

#include <QString>

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

// Failure messages show strings as text rather than as arrays of code units.
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace scrivlet::math::testing {

// A line and the value it must have.
struct ValueCase {
    const char16_t *expression;
    double expected;
};

// A line and the error kind it must fail with.
struct ErrorCase {
    const char16_t *expression;
    MathParserError::Kind kind;
};

inline void PrintTo(const ValueCase &c, std::ostream *os)
{
    *os << '"' << QString::fromUtf16(c.expression).toStdString() << "\" = " << c.expected;
}

inline void PrintTo(const ErrorCase &c, std::ostream *os)
{
    *os << '"' << QString::fromUtf16(c.expression).toStdString() << "\" fails with "
        << MathParserError::kindName(c.kind).toStdString();
}

inline ::testing::AssertionResult hasValue(const QString &expression, double expected,
                                           const Evaluator &evaluator = Evaluator::shared())
{
    const MathResult<double> result = evaluator.evaluate(expression);
    if (!result) {
        return ::testing::AssertionFailure() << "\"" << expression.toStdString() << "\" failed with "
                                             << MathParserError::kindName(result.error().kind()).toStdString();
    }
    const double actual = result.value();
    const bool same = (std::isnan(expected) && std::isnan(actual)) || actual == expected ||
                      std::fabs(actual - expected) <= 1e-12 * qMax(1.0, std::fabs(expected));
    if (!same) {
        return ::testing::AssertionFailure()
               << "\"" << expression.toStdString() << "\" is " << actual << ", expected " << expected;
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult failsWith(const QString &expression, MathParserError::Kind kind,
                                            const Evaluator &evaluator = Evaluator::shared())
{
    const MathResult<double> result = evaluator.evaluate(expression);
    if (result) {
        return ::testing::AssertionFailure() << "\"" << expression.toStdString() << "\" is " << result.value()
                                             << ", expected " << MathParserError::kindName(kind).toStdString();
    }
    if (result.error().kind() != kind) {
        return ::testing::AssertionFailure() << "\"" << expression.toStdString() << "\" failed with "
                                             << MathParserError::kindName(result.error().kind()).toStdString()
                                             << ", expected " << MathParserError::kindName(kind).toStdString();
    }
    return ::testing::AssertionSuccess();
}

} // namespace scrivlet::math::testing
