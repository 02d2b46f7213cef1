#include "shell/preferences/KeywordPreferences.h"

#include "platform/NotificationBus.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &KeywordPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("sumTriggers"), PreferenceType::String, QVariant(QStringLiteral("sum,add,total"))},
        {QStringLiteral("avgTriggers"), PreferenceType::String, QVariant(QStringLiteral("average,avg"))},
        {QStringLiteral("mathTriggers"), PreferenceType::String, QVariant(QStringLiteral("math,convert,model"))},
        {QStringLiteral("listTriggers"), PreferenceType::String, QVariant(QStringLiteral("list,todo"))},
        {QStringLiteral("countTriggers"), PreferenceType::String, QVariant(QStringLiteral("count"))},
        {QStringLiteral("codeTriggers"), PreferenceType::String, QVariant(QStringLiteral("code"))},
        {QStringLiteral("pasteTriggers"), PreferenceType::String, QVariant(QStringLiteral("paste"))},
        {QStringLiteral("timerTriggers"), PreferenceType::String, QVariant(QStringLiteral("timer"))},
        {QStringLiteral("checkTriggers"), PreferenceType::String, QVariant(QStringLiteral("/x,done"))},
        {QStringLiteral("sumMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("sum"))},
        {QStringLiteral("avgMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("avg"))},
        {QStringLiteral("mathMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("math"))},
        {QStringLiteral("listMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("list"))},
        {QStringLiteral("pasteMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("paste"))},
        {QStringLiteral("countMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("count"))},
        {QStringLiteral("codeMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("code"))},
        {QStringLiteral("timerMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("timer"))},
        {QStringLiteral("checkMainTrigger"), PreferenceType::String, QVariant(QStringLiteral("/x"))},
        {QStringLiteral("disableLinkHighlighting"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("disableLinkShortening"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("disableAllKeywords"), PreferenceType::Bool, QVariant(false)},
    };
    return definitions;
}

QString KeywordPreferences::triggersKey(KeywordID id)
{
    return keywordName(id).toLower() + QStringLiteral("Triggers");
}

QString KeywordPreferences::mainTriggerKey(KeywordID id)
{
    return keywordName(id).toLower() + QStringLiteral("MainTrigger");
}

QStringList KeywordPreferences::triggers(KeywordID id) const
{
    QStringList result;
    const QStringList pieces = stringValue(triggersKey(id)).split(u',', Qt::SkipEmptyParts);
    for (const QString &piece : pieces) {
        // Only blanks and tabs are trimmed: a line feed typed into the settings field
        // stays part of the word.
        qsizetype from = 0;
        qsizetype to = piece.size();
        while (from < to && (piece.at(from) == u' ' || piece.at(from) == u'\t'))
            ++from;
        while (to > from && (piece.at(to - 1) == u' ' || piece.at(to - 1) == u'\t'))
            --to;
        result.append(piece.mid(from, to - from));
    }
    return result;
}

void KeywordPreferences::setTriggers(KeywordID id, const QStringList &triggers)
{
    setValue(triggersKey(id), triggers.join(QStringLiteral(", ")));
}

void KeywordPreferences::setMainTrigger(KeywordID id, const QString &trigger)
{
    setValue(mainTriggerKey(id), trigger);
}

void KeywordPreferences::setDisableLinkHighlighting(bool value)
{
    setValue(QStringLiteral("disableLinkHighlighting"), value);
    if (value)
        setValue(QStringLiteral("disableLinkShortening"), true);
    postChanged();
}

void KeywordPreferences::setDisableLinkShortening(bool value)
{
    setValue(QStringLiteral("disableLinkShortening"), value);
    if (!value)
        setValue(QStringLiteral("disableLinkHighlighting"), false);
    postChanged();
}

void KeywordPreferences::setDisableAllKeywords(bool value)
{
    setValue(QStringLiteral("disableAllKeywords"), value);
    postChanged();
}

void KeywordPreferences::postChanged() const
{
    if (m_bus)
        m_bus->post(QStringLiteral("keywordPreferencesChanged"));
}

} // namespace scrivlet
