#include "EvalCommand.h"

#include "CliOptions.h"

#include "MathParser/MathEngine.h"
#include "calculation/SanitizeExpression.h"
#include "calculation/ShortestDecimal.h"

namespace scrivlet::cli {

EvalCommand::Outcome EvalCommand::evaluate(const QString &expression, bool raw)
{
    const QString text = raw ? expression : SanitizeExpression::sanitize(expression);
    const math::MathResult<double> result = math::evaluate(text);
    if (!result)
        return {QString(), math::errorKindName(result.error().kind())};
    return {shortestDecimal(result.value()), QString()};
}

int EvalCommand::run(const CliOptions &options, std::FILE *out, std::FILE *err)
{
    const Outcome outcome = evaluate(options.expression, options.raw);
    if (!outcome.ok()) {
        // The same "n/a" a math line shows; the reason is for whoever scripts this.
        std::fputs("n/a\n", out);
        std::fprintf(err, "%s\n", qPrintable(outcome.errorKind));
        return kExitNoValue;
    }
    std::fprintf(out, "%s\n", qPrintable(outcome.value));
    return 0;
}

} // namespace scrivlet::cli
