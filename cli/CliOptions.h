#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace scrivlet::cli {

// What the command line asked for, or why it can't be done.
struct CliOptions {
    QString verb;
    std::vector<std::pair<QString, QString>> settings; // --set KEY=VALUE, in order
    bool help = false;
    QString locale;     // --locale NAME: the number format; empty for the system's
    bool raw = false;   // eval --raw: the expression goes to the parser as typed
    QString expression; // eval's EXPR, convert's TEXT
    QString ratesFile;  // --rates FILE: the currency rates of process and convert
    QString dataDir;      // --data-dir DIR: the folder of the store the data verbs work on
    bool json = false;    // --json: lists as JSON for scripts
    QStringList arguments; // the words after a data verb ("list", an id, a note's text)
};

// The verbs that work on the notes of a data folder.
bool isDataVerb(const QString &verb);

struct CliError {
    QString message;
};

// Parses the arguments after the program name. Settings are checked against the
// catalogue here, and locale names against the locales Qt knows, so a bad key, value or
// locale is refused before any work is done.
std::variant<CliOptions, CliError> parseCommandLine(const QStringList &arguments);

QString usageText();

} // namespace scrivlet::cli
