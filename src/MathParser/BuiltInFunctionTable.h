#pragma once

#include "MathParser/FunctionSet.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace scrivlet::math {

// Every name of every built-in function, numbered. The parser writes a name's number into
// the expression tree, and each function set keeps what it holds under each number, so
// evaluating "sqrt" or an operator's "add" is an array access instead of a hashed,
// case-folded name lookup. Built once and only read afterwards.
class BuiltInFunctionTable {
public:
    static constexpr qint16 kNone = -1;

    static const BuiltInFunctionTable &instance();

    // The number of a built-in name, compared without regard to case; kNone for others.
    qint16 find(QStringView name) const;
    qsizetype size() const { return qsizetype(m_names.size()); }
    // The name as the built-ins spell it. Its text is a literal, so the parser hands it out
    // for a name written exactly so instead of allocating a copy.
    const QString &name(qint16 id) const { return m_names[std::size_t(id)]; }
    // The set every case-insensitive evaluator starts from.
    const FunctionSet &functionSet() const { return m_functionSet; }

private:
    BuiltInFunctionTable();

    static std::size_t foldedHash(QStringView name);

    std::vector<QString> m_names;
    // Open addressing over foldedHash, kNone for an empty slot; at most half full.
    std::vector<qint16> m_slots;
    std::size_t m_mask = 0;
    FunctionSet m_functionSet;
};

} // namespace scrivlet::math
