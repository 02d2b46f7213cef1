#pragma once

#include "MathParser/CharacterRange.h"

#include <QString>
#include <QStringView>

namespace scrivlet::math {

// A token as the tokenizer cuts it, before it is given a meaning. The subclasses
// (HexNumberToken, OperatorToken, ...) only name the kind they construct, so tokens of all
// kinds sit by value in one array. The text is a view into the line being parsed, except
// where the token's text differs from the line (superscript exponents, escaped quotes).
class RawToken {
public:
    enum class Kind : quint8 {
        hexNumber,
        octalNumber,
        decimalNumber,
        fractionNumber,
        localizedNumber,
        exponent,
        variable,
        operatorSymbol,
        identifier,
    };

    Kind kind() const { return m_kind; }
    QStringView string() const { return m_ownedString.isNull() ? m_string : QStringView(m_ownedString); }
    CharacterRange range() const { return m_range; }
    // The value the extractor read, for the number kinds.
    double numberValue() const { return m_numberValue; }
    bool isNumber() const { return m_kind <= Kind::localizedNumber; }

protected:
    RawToken(Kind kind, QStringView string, CharacterRange range, double numberValue = 0.0)
        : m_kind(kind), m_string(string), m_range(range), m_numberValue(numberValue)
    {
    }
    RawToken(Kind kind, QString ownedString, CharacterRange range)
        : m_kind(kind), m_ownedString(std::move(ownedString)), m_range(range)
    {
    }

private:
    Kind m_kind;
    QStringView m_string;
    QString m_ownedString;
    CharacterRange m_range;
    double m_numberValue = 0.0;
};

} // namespace scrivlet::math
