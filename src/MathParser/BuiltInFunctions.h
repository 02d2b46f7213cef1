#pragma once

#include "MathParser/Function.h"

#include <QStringList>

#include <cmath>
#include <initializer_list>

namespace scrivlet::math {

class EvaluationState;
class FunctionSet;

// The functions and constants every evaluator starts with, registered family by family.
namespace builtins {

void registerAll(FunctionSet &set);

void registerArithmeticFunctions(FunctionSet &set);
void registerExponentialFunctions(FunctionSet &set);
void registerTrigonometricFunctions(FunctionSet &set);
void registerAggregateFunctions(FunctionSet &set);
void registerConstants(FunctionSet &set);
void registerLogicalFunctions(FunctionSet &set);

// Names for a built-in, from string literals (their text is used in place).
QStringList names(std::initializer_list<const char16_t *> list);

// Adds one built-in; two built-ins under one name are a programming error. The body
// evaluates its own arguments through the state.
void add(FunctionSet &set, QStringList names, NativeFunction::Variadic function);

// Built-ins of a fixed number of numeric arguments. The arguments are evaluated in order;
// a wrong count fails with invalidArguments, and after a failed argument the function is
// not called.
void addConstant(FunctionSet &set, QStringList names, double value);
void addUnary(FunctionSet &set, QStringList names, double (*function)(EvaluationState &state, double x));
void addBinary(FunctionSet &set, QStringList names, double (*function)(EvaluationState &state, double x, double y));

} // namespace builtins
} // namespace scrivlet::math
