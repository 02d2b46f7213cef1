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
};

struct CliError {
    QString message;
};

// Parses the arguments after the program name. Settings are checked against the
// catalogue here, so a bad key or value is refused before any work is done.
std::variant<CliOptions, CliError> parseCommandLine(const QStringList &arguments);

QString usageText();

} // namespace scrivlet::cli
