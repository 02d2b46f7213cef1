#pragma once

#include "calculation/Variable.h"
#include "calculation/VariableMatcher.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <limits>
#include <map>
#include <vector>

namespace scrivlet {

// The variables of one editor's math note and where they are used. It lives as long as
// the editor and is never saved: the first full pass over a note builds it from the text.
class MathManager final {
    Q_DISABLE_COPY_MOVE(MathManager)

public:
    MathManager() = default;

    const std::vector<Variable> &storedVariables() const { return m_storedVariables; }
    // Which key each line defines.
    const std::map<int, QString> &storedVariablesReverseIndex() const { return m_storedVariablesReverseIndex; }
    // Lines that define a key already defined on another line.
    const std::map<int, QString> &duplicateVariables() const { return m_duplicateVariables; }
    // The lines that use each key, and the keys each line uses.
    const std::map<QString, std::vector<int>> &variableUseIndex() const { return m_variableUseIndex; }
    const std::map<int, QStringList> &variableUseReverseIndex() const { return m_variableUseReverseIndex; }

    // The variable of that key, or null.
    const Variable *variable(const QString &key) const;

    // Forgets what `lineNumber` defined, and every use of that key.
    void removeVariable(int lineNumber);
    void removeDuplicate(int lineNumber);
    void setDuplicate(int lineNumber, const QString &key);
    void setDefinedKey(int lineNumber, const QString &key);
    void clearAll();
    void removeUses(int lineNumber);
    void addUse(const QString &key, int lineNumber);

    // The stored keys that occur in `text` as whole words, case-insensitively; text
    // taken by one key (a longer key first) is not counted for another. Only keys
    // defined on a line up to `lastLine` count: while typing, the variables of lines
    // below are still known from the last pass, and a line can't use them.
    QStringList usedVariables(const QString &text, int lastLine = std::numeric_limits<int>::max()) const;

    // Reads `valueText` the way a math line is read ("$1,200.50", "20% of 50") and
    // stores it under `key`, replacing a variable of the same key. A text that is no
    // number ("n/a") stores nothing: the variable then doesn't exist for the lines below.
    bool setVariable(const QString &key, const QString &valueText, int lineNumber);

    // What a definition line does with its value: forgets what the line defined before,
    // stores the new value and notes the key as the line's. When the line keeps its key
    // and gets a readable value, the uses of the key stay as they are: the lines that
    // use it still do.
    void defineVariable(const QString &key, const QString &valueText, int lineNumber);

    // The names, for looking them up in the lines.
    const VariableMatcher &matcher() const { return m_matcher; }
    void setScanEnabled(bool enabled) { m_matcher.setScanEnabled(enabled); }

    // The one currency symbol in `text`, or "" when there is none or more than one kind:
    // "$5 + $3" is in dollars, "$5 + €3" in nothing.
    static QString currencySymbolOf(QStringView text);

private:
    void eraseVariableAt(std::size_t index);
    void dropUsesOfKey(const QString &key);

    std::vector<Variable> m_storedVariables;
    std::map<int, QString> m_storedVariablesReverseIndex;
    std::map<int, QString> m_duplicateVariables;
    std::map<QString, std::vector<int>> m_variableUseIndex;
    std::map<int, QStringList> m_variableUseReverseIndex;

    QHash<QString, std::size_t> m_indexByKey;
    VariableMatcher m_matcher;
};

} // namespace scrivlet
