#include "CliOptions.h"

#include "calculation/NumberLocale.h"
#include "shell/preferences/PreferencesCatalogue.h"

namespace scrivlet::cli {

namespace {

std::optional<CliError> checkSetting(const QString &key, const QString &value)
{
    const PreferenceDefinition *definition = PreferencesCatalogue::find(key);
    if (!definition)
        return CliError{QStringLiteral("unknown settings key \"%1\"").arg(key)};
    if (!definition->coerce(QVariant(value)))
        return CliError{QStringLiteral("the value \"%1\" does not fit settings key \"%2\", which takes %3")
                            .arg(value, key, definition->typeName())};
    return std::nullopt;
}

// An expression may start with a minus ("-2^2") and is no option for that; options are
// "-" and a letter, or "--" and a name.
bool looksLikeOption(const QString &arg)
{
    return arg.size() > 1 && arg.at(0) == u'-' && (arg.at(1) == u'-' || arg.at(1).isLetter());
}

} // namespace

std::variant<CliOptions, CliError> parseCommandLine(const QStringList &arguments)
{
    CliOptions options;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        auto takeValue = [&](const QString &name) -> std::optional<QString> {
            const QString prefix = name + u'=';
            if (arg.startsWith(prefix))
                return arg.mid(prefix.size());
            if (i + 1 < arguments.size())
                return arguments.at(++i);
            return std::nullopt;
        };
        if (optionsEnded || !looksLikeOption(arg)) {
            if (options.verb.isEmpty())
                options.verb = arg;
            else if (options.verb == u"eval" && options.expression.isNull())
                options.expression = arg;
            else
                return CliError{QStringLiteral("unexpected argument \"%1\"").arg(arg)};
        } else if (arg == u"--") {
            optionsEnded = true;
        } else if (arg == u"-h" || arg == u"--help") {
            options.help = true;
        } else if (arg == u"--set" || arg.startsWith(u"--set=")) {
            const auto pair = takeValue(QStringLiteral("--set"));
            if (!pair)
                return CliError{QStringLiteral("--set needs KEY=VALUE")};
            const qsizetype eq = pair->indexOf(u'=');
            if (eq <= 0)
                return CliError{QStringLiteral("--set needs KEY=VALUE, not \"%1\"").arg(*pair)};
            const QString key = pair->left(eq);
            const QString value = pair->mid(eq + 1);
            if (auto error = checkSetting(key, value))
                return *error;
            options.settings.emplace_back(key, value);
        } else if (arg == u"--locale" || arg.startsWith(u"--locale=")) {
            const auto name = takeValue(QStringLiteral("--locale"));
            if (!name)
                return CliError{QStringLiteral("--locale needs a locale name such as de_DE or en_US")};
            if (!NumberLocale::fromName(*name))
                return CliError{QStringLiteral("unknown locale \"%1\"").arg(*name)};
            options.locale = *name;
        } else if (arg == u"--raw") {
            options.raw = true;
        } else {
            return CliError{QStringLiteral("unknown option \"%1\"").arg(arg)};
        }
    }
    if (options.verb.isEmpty() && !options.help)
        return CliError{QStringLiteral("no command given")};
    if (!options.verb.isEmpty() && options.verb != u"process" && options.verb != u"eval")
        return CliError{QStringLiteral("unknown command \"%1\"").arg(options.verb)};
    if (options.verb == u"eval") {
        if (options.expression.isNull() && !options.help)
            return CliError{QStringLiteral("eval needs an expression")};
        if (!options.settings.empty())
            return CliError{QStringLiteral("--set does not apply to eval")};
    } else if (options.raw) {
        return CliError{QStringLiteral("--raw applies to eval only")};
    }
    return options;
}

QString usageText()
{
    return QStringLiteral(
        "Usage: scrivlet-cli process [--locale NAME] [--set KEY=VALUE]...\n"
        "       scrivlet-cli eval [--locale NAME] [--raw] EXPR\n"
        "\n"
        "Scrivlet's note engine without a window.\n"
        "\n"
        "Commands:\n"
        "  process    Read one note's text on standard input, run it through the note\n"
        "             engine as the app does when the note is opened, and write the\n"
        "             resulting text to standard output, byte for byte.\n"
        "  eval       Calculate EXPR as a math line does and print its value, or \"n/a\"\n"
        "             with the reason on standard error (exit status 1).\n"
        "\n"
        "Options:\n"
        "  --set KEY=VALUE   Use VALUE for the settings key KEY during this run.\n"
        "  --locale NAME     Numbers are written in the format of locale NAME (de_DE,\n"
        "                    en_US); without it, the system's.\n"
        "  --raw             eval: give EXPR to the parser as typed, without the rewrites\n"
        "                    of a math line (\"%\" is then a modulo, \"^\" exclusive or).\n"
        "  --                Take what follows as EXPR even if it starts with \"-\".\n"
        "  -h, --help        Show this text.\n"
        "\n"
        "Exit status: 0 on success, 1 when eval has no value, 2 for bad options or settings.\n");
}

} // namespace scrivlet::cli
