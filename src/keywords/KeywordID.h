#pragma once

#include <QString>

#include <array>
#include <optional>

namespace scrivlet {

// The nine keyword kinds, in their declared order. Their text form is the case name in
// upper case, and that is what the pipeline compares.
enum class KeywordID { SUM, AVG, MATH, LIST, COUNT, CODE, CHECK, PASTE, TIMER };

inline constexpr std::array<KeywordID, 9> kAllKeywordIDs = {
    KeywordID::SUM,  KeywordID::AVG,   KeywordID::MATH,  KeywordID::LIST, KeywordID::COUNT,
    KeywordID::CODE, KeywordID::CHECK, KeywordID::PASTE, KeywordID::TIMER,
};

inline QString keywordName(KeywordID id)
{
    switch (id) {
    case KeywordID::SUM: return QStringLiteral("SUM");
    case KeywordID::AVG: return QStringLiteral("AVG");
    case KeywordID::MATH: return QStringLiteral("MATH");
    case KeywordID::LIST: return QStringLiteral("LIST");
    case KeywordID::COUNT: return QStringLiteral("COUNT");
    case KeywordID::CODE: return QStringLiteral("CODE");
    case KeywordID::CHECK: return QStringLiteral("CHECK");
    case KeywordID::PASTE: return QStringLiteral("PASTE");
    case KeywordID::TIMER: return QStringLiteral("TIMER");
    }
    return {};
}

inline std::optional<KeywordID> keywordFromName(const QString &name)
{
    for (KeywordID id : kAllKeywordIDs) {
        if (keywordName(id) == name)
            return id;
    }
    return std::nullopt;
}

} // namespace scrivlet
