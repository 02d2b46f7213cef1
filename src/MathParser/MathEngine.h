#pragma once

// The math engine in one include: parse an expression, evaluate it, name its errors.
// Nothing here throws; a failure comes back as a MathParserError in the result.

#include "MathParser/Configuration.h"
#include "MathParser/Evaluator.h"
#include "MathParser/Expression.h"
#include "MathParser/MathParserError.h"
#include "MathParser/MathResult.h"

#include <QString>

namespace scrivlet::math {

// Tokenizes, resolves, groups and builds the expression tree of one line.
MathResult<Expression> parse(const QString &text, const Configuration &configuration = Configuration::shared());

// Evaluates with the shared evaluator: radians, the built-in functions, names compared
// without regard to case. Variables are looked up in the substitutions first, then asked
// of the resolver; a name neither knows is unknownVariable.
MathResult<double> evaluate(const Expression &expression, const Substitutions &substitutions = {},
                            const VariableResolver &variableResolver = {});

// Parses with the shared configuration and evaluates with the shared evaluator.
MathResult<double> evaluate(const QString &text);

// The error kind as spelled in code, e.g. "divideByZero".
QString errorKindName(MathParserError::Kind kind);

} // namespace scrivlet::math
