#include "MathParser/BuiltInFunctions.h"

#include "MathParser/EvaluationState.h"
#include "MathParser/FunctionSet.h"

#include <QtGlobal>

namespace scrivlet::math::builtins {

void registerAll(FunctionSet &set)
{
    registerArithmeticFunctions(set);
    registerExponentialFunctions(set);
    registerTrigonometricFunctions(set);
    registerAggregateFunctions(set);
    registerConstants(set);
    registerLogicalFunctions(set);
}

QStringList names(std::initializer_list<const char16_t *> list)
{
    QStringList result;
    result.reserve(qsizetype(list.size()));
    for (const char16_t *name : list)
        result.append(QString::fromRawData(reinterpret_cast<const QChar *>(name),
                                           qsizetype(std::char_traits<char16_t>::length(name))));
    return result;
}

namespace {

void addNative(FunctionSet &set, QStringList names, NativeFunction native)
{
    if (set.registerFunction(Function(std::move(names), native)))
        qFatal("Conflicting name/alias in built-in functions");
}

} // namespace

void add(FunctionSet &set, QStringList names, NativeFunction::Variadic function)
{
    addNative(set, std::move(names), {.shape = NativeFunction::Shape::variadic, .variadic = function});
}

void addConstant(FunctionSet &set, QStringList names, double value)
{
    addNative(set, std::move(names), {.shape = NativeFunction::Shape::constant, .constant = value});
}

void addUnary(FunctionSet &set, QStringList names, NativeFunction::Unary function)
{
    addNative(set, std::move(names), {.shape = NativeFunction::Shape::unary, .unary = function});
}

void addBinary(FunctionSet &set, QStringList names, NativeFunction::Binary function)
{
    addNative(set, std::move(names), {.shape = NativeFunction::Shape::binary, .binary = function});
}

} // namespace scrivlet::math::builtins
