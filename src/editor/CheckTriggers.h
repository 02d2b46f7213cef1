#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace scrivlet {

class KeywordDefinitionsContainer;

// The words that tick a checklist row when they end it ("/x", "done"), read from the
// CHECK keyword as the settings have it at the time of the run. Comparisons ignore case.
class CheckTriggers {
public:
    // The word a ticked row gets when the CHECK keyword has no definition.
    static constexpr char16_t kFallbackMainTrigger[] = u".check";

    explicit CheckTriggers(const KeywordDefinitionsContainer &keywords);
    CheckTriggers(QStringList triggers, QString mainTrigger);

    bool isDefined() const { return m_defined; }
    // The trigger a row gets when its box is ticked.
    const QString &mainTrigger() const { return m_mainTrigger; }
    // Lower-cased, in the order of the settings.
    const QStringList &triggers() const { return m_triggers; }

    // Whether `line`, trimmed and lower-cased, ends in one of the triggers.
    bool isChecked(QStringView line) const;
    // The first trigger, in the order of the settings, that `lowercasedLine` ends in as
    // it stands (nothing trimmed).
    std::optional<QString> triggerAtEnd(QStringView lowercasedLine) const;

private:
    bool m_defined = false;
    QStringList m_triggers;
    QString m_mainTrigger;
};

} // namespace scrivlet
