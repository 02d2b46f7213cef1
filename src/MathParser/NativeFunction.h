#pragma once

#include <QtGlobal>

namespace scrivlet::math {

class EvaluationState;

// A built-in's body as plain function pointers. Every operator of every line is a
// function call, so the evaluator calls built-ins directly instead of through
// std::function, and evaluates the arguments of the fixed-arity ones itself.
struct NativeFunction {
    enum class Shape : quint8 { none, constant, unary, binary, variadic };
    using Unary = double (*)(EvaluationState &state, double x);
    using Binary = double (*)(EvaluationState &state, double x, double y);
    using Variadic = double (*)(EvaluationState &state);

    Shape shape = Shape::none;
    double constant = 0.0;
    Unary unary = nullptr;
    Binary binary = nullptr;
    Variadic variadic = nullptr;

    // A constant takes no arguments, a unary function one and a binary one two: a wrong
    // count fails with invalidArguments, and after a failed argument the body is not called.
    double operator()(EvaluationState &state) const;
};

} // namespace scrivlet::math
