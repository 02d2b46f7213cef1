#pragma once

#include <QtGlobal>

namespace scrivlet::math {

// The rows of the default operator table, so code can name an operator without
// spelling its function or token.
enum class BuiltInOperator : quint8 {
    logicalOr,
    logicalAnd,
    logicalNot,
    logicalEqual,
    logicalNotEqual,
    logicalLessThan,
    logicalGreaterThan,
    logicalLessThanOrEqual,
    logicalGreaterThanOrEqual,
    bitwiseOr,
    bitwiseXor,
    bitwiseAnd,
    leftShift,
    rightShift,
    minus,
    add,
    divide,
    multiply,
    implicitMultiply,
    modulo,
    bitwiseNot,
    factorial,
    doubleFactorial,
    degree,
    percent,
    power,
    parenthesisOpen,
    parenthesisClose,
    comma,
    unaryMinus,
    unaryPlus,
    squareRoot,
    cubeRoot,
};

} // namespace scrivlet::math
