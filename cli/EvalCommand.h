#pragma once

#include <QString>

#include <cstdio>

namespace scrivlet::cli {

struct CliOptions;

// `scrivlet-cli eval`: one expression through the math engine, as a math line calculates
// it (or, with --raw, straight to the parser).
class EvalCommand final {
public:
    static constexpr int kExitNoValue = 1;

    // What the expression comes to: the value in its shortest form ("0.1", "nan", "inf"),
    // or nothing and the engine's error kind ("divideByZero"). The sanitiser reads the
    // current number locale.
    struct Outcome {
        QString value;
        QString errorKind;
        bool ok() const { return errorKind.isEmpty(); }
    };
    static Outcome evaluate(const QString &expression, bool raw);

    // Prints the value to `out`, or "n/a" to `out` and the error kind to `err`; returns
    // the exit status.
    static int run(const CliOptions &options, std::FILE *out, std::FILE *err);
};

} // namespace scrivlet::cli
