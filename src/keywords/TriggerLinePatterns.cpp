#include "keywords/TriggerLinePatterns.h"

#include "keywords/KeywordDefinitionsContainer.h"

#include <QRegularExpression>

namespace scrivlet {

namespace {

QString alternation(const QStringList &triggers)
{
    QStringList escaped;
    escaped.reserve(triggers.size());
    for (const QString &trigger : triggers)
        escaped.append(QRegularExpression::escape(trigger.toLower()));
    return escaped.join(u'|');
}

std::optional<TextRange> firstMatch(const QString &text, const QRegularExpression *pattern)
{
    if (!pattern)
        return std::nullopt;
    const QRegularExpressionMatch match = pattern->match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return TextRange{match.capturedStart(), match.capturedLength()};
}

} // namespace

QString timerLinePatternSource(const QStringList &timerTriggers)
{
    // A duration is minutes ("5", "2.5", ".5") or minutes and seconds ("5:30", ":30").
    static const QString duration = QStringLiteral("(?:[0-9]+(?:\\.[0-9]+)?|\\.[0-9]+|[0-9]*:[0-5]?[0-9])");
    const QString durations = duration % QStringLiteral("(?:\\s+") % duration % QStringLiteral(")?");
    const QString argument =
        QStringLiteral("(?:(?:(?:pomo|pomodoro|breath|breathe|p|r|s)|") % durations % QStringLiteral("))?");
    return QStringLiteral("^(?:") % alternation(timerTriggers) % QStringLiteral(")\\b(?:\\s+(?:") % argument
           % QStringLiteral("))?\\s*(?::.*)?$");
}

QString pasteLinePatternSource(const QStringList &pasteTriggers)
{
    return QStringLiteral("^(?:") % alternation(pasteTriggers)
           % QStringLiteral(")(?:\\s*(\\([^()]*\\)))?[ \\t]*(?:\\n[ \\t]*)?$");
}

std::optional<TextRange> detectTimerLine(const QString &text, const KeywordDefinitionsContainer &keywords)
{
    return firstMatch(text, keywords.timerLinePattern());
}

std::optional<TextRange> detectPasteLine(const QString &text, const KeywordDefinitionsContainer &keywords)
{
    return firstMatch(text, keywords.pasteLinePattern());
}

} // namespace scrivlet
