#include "CliOptions.h"

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

} // namespace

std::variant<CliOptions, CliError> parseCommandLine(const QStringList &arguments)
{
    CliOptions options;
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
        if (arg == u"-h" || arg == u"--help") {
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
        } else if (arg.startsWith(u'-')) {
            return CliError{QStringLiteral("unknown option \"%1\"").arg(arg)};
        } else if (options.verb.isEmpty()) {
            options.verb = arg;
        } else {
            return CliError{QStringLiteral("unexpected argument \"%1\"").arg(arg)};
        }
    }
    if (options.verb.isEmpty() && !options.help)
        return CliError{QStringLiteral("no command given")};
    if (!options.verb.isEmpty() && options.verb != u"process")
        return CliError{QStringLiteral("unknown command \"%1\"").arg(options.verb)};
    return options;
}

QString usageText()
{
    return QStringLiteral(
        "Usage: scrivlet-cli process [--set KEY=VALUE]...\n"
        "\n"
        "Scrivlet's note engine without a window.\n"
        "\n"
        "Commands:\n"
        "  process    Read one note's text on standard input, run it through the note\n"
        "             engine as the app does when the note is opened, and write the\n"
        "             resulting text to standard output, byte for byte.\n"
        "\n"
        "Options:\n"
        "  --set KEY=VALUE   Use VALUE for the settings key KEY during this run.\n"
        "  -h, --help        Show this text.\n"
        "\n"
        "Exit status: 0 on success, 2 for bad options or settings.\n");
}

} // namespace scrivlet::cli
