#include "calculation/MathManager.h"

#include "calculation/CalculationLog.h"
#include "calculation/SanitizeExpression.h"
#include "calculation/ShortestDecimal.h"

#include <algorithm>

namespace scrivlet {

namespace {

// The characters that give a math line its currency.
constexpr QStringView kCurrencyCharacters = u"$€£¥₩₹₽₫₴₪₦฿₲₵₡₺₸₮₭₼₾₿";

} // namespace

QString MathManager::currencySymbolOf(QStringView text)
{
    QChar found;
    for (const QChar c : text) {
        if (!kCurrencyCharacters.contains(c))
            continue;
        if (found.isNull())
            found = c;
        else if (found != c)
            return {};
    }
    return found.isNull() ? QString() : QString(found);
}

const Variable *MathManager::variable(const QString &key) const
{
    const auto it = m_indexByKey.constFind(key);
    return it == m_indexByKey.constEnd() ? nullptr : &m_storedVariables[*it];
}

void MathManager::eraseVariableAt(std::size_t index)
{
    m_matcher.remove(m_storedVariables[index].key);
    m_indexByKey.remove(m_storedVariables[index].key);
    m_storedVariables.erase(m_storedVariables.begin() + std::ptrdiff_t(index));
    for (std::size_t i = index; i < m_storedVariables.size(); ++i)
        m_indexByKey[m_storedVariables[i].key] = i;
}

void MathManager::dropUsesOfKey(const QString &key)
{
    const auto uses = m_variableUseIndex.find(key);
    if (uses == m_variableUseIndex.end())
        return;
    for (const int line : uses->second) {
        const auto keys = m_variableUseReverseIndex.find(line);
        if (keys == m_variableUseReverseIndex.end())
            continue;
        keys->second.removeAll(key);
        if (keys->second.isEmpty())
            m_variableUseReverseIndex.erase(keys);
    }
    m_variableUseIndex.erase(uses);
}

void MathManager::removeVariable(int lineNumber)
{
    const auto defined = m_storedVariablesReverseIndex.find(lineNumber);
    if (defined == m_storedVariablesReverseIndex.end())
        return;
    const QString key = defined->second;
    m_storedVariablesReverseIndex.erase(defined);
    // The key may be held by another line by now, when this line's own value could not
    // be read: that variable and its uses stay.
    const auto index = m_indexByKey.constFind(key);
    if (index != m_indexByKey.constEnd()) {
        if (m_storedVariables[*index].lineNumber != lineNumber)
            return;
        eraseVariableAt(*index);
    }
    dropUsesOfKey(key);
}

void MathManager::removeDuplicate(int lineNumber)
{
    m_duplicateVariables.erase(lineNumber);
}

void MathManager::setDuplicate(int lineNumber, const QString &key)
{
    m_duplicateVariables[lineNumber] = key;
}

void MathManager::setDefinedKey(int lineNumber, const QString &key)
{
    m_storedVariablesReverseIndex[lineNumber] = key;
}

void MathManager::clearAll()
{
    m_storedVariables.clear();
    m_storedVariablesReverseIndex.clear();
    m_duplicateVariables.clear();
    m_variableUseIndex.clear();
    m_variableUseReverseIndex.clear();
    m_indexByKey.clear();
    m_matcher.clear();
}

void MathManager::removeUses(int lineNumber)
{
    // The reverse index names the lists that hold the line: no need to walk them all.
    const auto keys = m_variableUseReverseIndex.find(lineNumber);
    if (keys == m_variableUseReverseIndex.end())
        return;
    for (const QString &key : keys->second) {
        const auto uses = m_variableUseIndex.find(key);
        if (uses == m_variableUseIndex.end())
            continue;
        std::erase(uses->second, lineNumber);
        if (uses->second.empty())
            m_variableUseIndex.erase(uses);
    }
    m_variableUseReverseIndex.erase(keys);
}

void MathManager::addUse(const QString &key, int lineNumber)
{
    m_variableUseIndex[key].push_back(lineNumber);
    QStringList &keys = m_variableUseReverseIndex[lineNumber];
    if (!keys.contains(key))
        keys << key;
}

QStringList MathManager::usedVariables(const QString &text, int lastLine) const
{
    return m_matcher.usedKeys(text, [&](const QString &key) { return variable(key)->lineNumber <= lastLine; });
}

bool MathManager::setVariable(const QString &key, const QString &valueText, int lineNumber)
{
    const QString sanitized = SanitizeExpression::sanitize(valueText);
    bool ok = false;
    const double number = sanitized.toDouble(&ok);
    if (!ok) {
        qCDebug(lcCalculation, "Variable %s can't take the value %s.", qUtf8Printable(key), qUtf8Printable(valueText));
        return false;
    }
    Variable variable{key, shortestDecimal(number), lineNumber, currencySymbolOf(valueText)};
    const auto index = m_indexByKey.constFind(key);
    if (index != m_indexByKey.constEnd()) {
        m_storedVariables[*index] = std::move(variable);
    } else {
        m_indexByKey.insert(key, m_storedVariables.size());
        m_storedVariables.push_back(std::move(variable));
        m_matcher.insert(key);
    }
    return true;
}

void MathManager::defineVariable(const QString &key, const QString &valueText, int lineNumber)
{
    const auto defined = m_storedVariablesReverseIndex.find(lineNumber);
    const Variable *current = variable(key);
    const bool keepsItsKey = defined != m_storedVariablesReverseIndex.end() && defined->second == key && current &&
                             current->lineNumber == lineNumber;
    if (keepsItsKey && setVariable(key, valueText, lineNumber))
        return;
    removeVariable(lineNumber);
    setVariable(key, valueText, lineNumber);
    setDefinedKey(lineNumber, key);
}

} // namespace scrivlet
