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

bool isDataVerb(const QString &verb)
{
    static const QStringList verbs{QStringLiteral("notes"),  QStringLiteral("void"),          QStringLiteral("slots"),
                                   QStringLiteral("search"), QStringLiteral("backup"),        QStringLiteral("import-legacy"),
                                   QStringLiteral("reset")};
    return verbs.contains(verb);
}

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
            else if ((options.verb == u"eval" || options.verb == u"convert") && options.expression.isNull())
                options.expression = arg;
            else if (isDataVerb(options.verb))
                options.arguments << arg;
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
        } else if (arg == u"--rates" || arg.startsWith(u"--rates=")) {
            const auto file = takeValue(QStringLiteral("--rates"));
            if (!file || file->isEmpty())
                return CliError{QStringLiteral("--rates needs a file of currency rates")};
            options.ratesFile = *file;
        } else if (arg == u"--raw") {
            options.raw = true;
        } else if (arg == u"--data-dir" || arg.startsWith(u"--data-dir=")) {
            const auto dir = takeValue(QStringLiteral("--data-dir"));
            if (!dir || dir->isEmpty())
                return CliError{QStringLiteral("--data-dir needs a folder")};
            options.dataDir = *dir;
        } else if (arg == u"--json") {
            options.json = true;
        } else {
            return CliError{QStringLiteral("unknown option \"%1\"").arg(arg)};
        }
    }
    if (options.verb.isEmpty() && !options.help)
        return CliError{QStringLiteral("no command given")};
    if (!options.verb.isEmpty() && options.verb != u"process" && options.verb != u"eval" &&
        options.verb != u"convert" && !isDataVerb(options.verb))
        return CliError{QStringLiteral("unknown command \"%1\"").arg(options.verb)};
    if (isDataVerb(options.verb)) {
        // The notes of a run are never the user's own by accident: the folder is named.
        if (options.dataDir.isEmpty() && !options.help)
            return CliError{QStringLiteral("%1 needs --data-dir DIR").arg(options.verb)};
        if (!options.settings.empty())
            return CliError{QStringLiteral("--set does not apply to %1").arg(options.verb)};
    } else if (!options.verb.isEmpty()) {
        if (!options.dataDir.isEmpty())
            return CliError{QStringLiteral("--data-dir does not apply to %1").arg(options.verb)};
        if (options.json && options.verb != u"process")
            return CliError{QStringLiteral("--json does not apply to %1").arg(options.verb)};
    } else if (!options.dataDir.isEmpty() && !options.help) {
        return CliError{QStringLiteral("--data-dir needs a command, such as \"notes list\"")};
    }
    if (!options.ratesFile.isEmpty() && options.verb != u"process" && options.verb != u"convert")
        return CliError{QStringLiteral("--rates applies to process and convert only")};
    if (options.verb == u"convert" && options.expression.isNull() && !options.help)
        return CliError{QStringLiteral("convert needs a text such as \"89 miles to km\"")};
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
        "Usage: scrivlet-cli process [--locale NAME] [--set KEY=VALUE]... [--rates FILE] [--json]\n"
        "       scrivlet-cli eval [--locale NAME] [--raw] EXPR\n"
        "       scrivlet-cli convert [--locale NAME] [--set KEY=VALUE]... [--rates FILE] TEXT\n"
        "       scrivlet-cli --data-dir DIR notes list|show|new|next|previous|delete|promote|jump ...\n"
        "       scrivlet-cli --data-dir DIR void list|restore|empty ...\n"
        "       scrivlet-cli --data-dir DIR slots | search QUERY | backup | import-legacy FILE\n"
        "       scrivlet-cli --data-dir DIR reset preferences|factory\n"
        "\n"
        "Scrivlet's note engine without a window.\n"
        "\n"
        "Commands:\n"
        "  process    Read one note's text on standard input, run it through the note\n"
        "             engine as the app does when the note is opened, and write the\n"
        "             resulting text to standard output, byte for byte. With --json,\n"
        "             one JSON object instead: {\"text\": the resulting text,\n"
        "             \"checklist\": the rows of a list note, each with content,\n"
        "             checked and hidden, \"scrivlinks\": the short links, each with\n"
        "             fullUrl and shortenedUrl}.\n"
        "  eval       Calculate EXPR as a math line does and print its value, or \"n/a\"\n"
        "             with the reason on standard error (exit status 1).\n"
        "  convert    Convert TEXT (\"89 miles to km\", \"$24\") as a math line does and\n"
        "             print what it shows behind its \"=\"; \"N/A\" or \"Not a conversion\n"
        "             request.\" come with exit status 1.\n"
        "\n"
        "Commands on the notes kept in DIR (created if needed; its settings are in\n"
        "DIR/settings.ini, never your own). Each run starts and quits like the app, and the\n"
        "note left open is opened again by the next run. ID is a note's id as the lists\n"
        "show it, or its first digits (four or more) if they name one note.\n"
        "  notes list            The stack, oldest first; \"*\" marks the open note.\n"
        "  notes show [ID]       The text of the open note, or of note ID.\n"
        "  notes new [TEXT]      A new note holding TEXT, or what standard input holds up to\n"
        "                        its end; prints its id. A note left empty is cleared away\n"
        "                        at the next start, as in the app.\n"
        "  notes next            Open the next newer note; past the newest, a new one.\n"
        "  notes previous        Open the next older note.\n"
        "  notes delete [ID]     Send the open note, or note ID, to The Void. The command is\n"
        "                        the confirmation: nothing is asked.\n"
        "  notes promote [ID]    Make the open note, or note ID, the newest, and open it.\n"
        "  notes jump ID         Open note ID, in the stack or in its slot.\n"
        "  void list             The notes in The Void, latest deleted first.\n"
        "  void restore ID       Bring note ID back as the newest note.\n"
        "  void empty            Delete every note in The Void for good. The command is the\n"
        "                        confirmation: nothing is asked.\n"
        "  slots                 The slotted notes; \"*\" marks the open slot.\n"
        "  search QUERY          Notes holding QUERY, ignoring case and accents.\n"
        "  backup                Copy the store beside itself now; prints the copy's path.\n"
        "  import-legacy FILE    Import the notes of an earlier Scrivlet database.\n"
        "  reset preferences     Put DIR's settings back to their defaults; notes stay.\n"
        "  reset factory         Delete DIR's notes (slots and The Void included), its\n"
        "                        legacy database and settings: the next run starts like a\n"
        "                        new installation. The store's backup copies stay.\n"
        "Messages the app shows over the note are written to standard error; a warning\n"
        "among them means the command was turned down.\n"
        "\n"
        "Options:\n"
        "  --set KEY=VALUE   Use VALUE for the settings key KEY during this run.\n"
        "  --locale NAME     Numbers are written in the format of locale NAME (de_DE,\n"
        "                    en_US); without it, the system's.\n"
        "  --rates FILE      process, convert: the currency rates, as JSON in the rates\n"
        "                    server's format ({\"rates\": {\"CAD\": 1.36, ...}}, units per\n"
        "                    US dollar). The network is never used; without FILE only the\n"
        "                    manual rates (--set manualCurrencyRates=CAD:1.36) are known.\n"
        "  --raw             eval: give EXPR to the parser as typed, without the rewrites\n"
        "                    of a math line (\"%\" is then a modulo, \"^\" exclusive or).\n"
        "  --data-dir DIR    The folder of the notes for the commands above.\n"
        "  --json            process: the note as JSON (see above).\n"
        "                    notes list, notes show, slots, search and void list print JSON:\n"
        "                    one object per note with id, content, dbIndex, lastModified\n"
        "                    (ISO-8601, UTC), isSlotted and slotIndex.\n"
        "  --                Take what follows as EXPR or TEXT even if it starts with \"-\".\n"
        "  -h, --help        Show this text.\n"
        "\n"
        "Exit status: 0 on success; 1 when eval has no value, or when a command on DIR\n"
        "fails or is turned down (no such note, no older notes, a folder or store that\n"
        "can't be opened); 2 for bad usage (unknown command or option, a missing or\n"
        "extra argument, an ID that isn't one, input that isn't UTF-8 text).\n");
}

} // namespace scrivlet::cli
