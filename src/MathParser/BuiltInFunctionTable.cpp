#include "MathParser/BuiltInFunctionTable.h"

#include "MathParser/BuiltInFunctions.h"
#include "MathParser/CaseFolding.h"

#include <bit>

namespace scrivlet::math {

const BuiltInFunctionTable &BuiltInFunctionTable::instance()
{
    static const BuiltInFunctionTable table;
    return table;
}

BuiltInFunctionTable::BuiltInFunctionTable() : m_functionSet(false, FunctionSet::Unindexed{})
{
    builtins::registerAll(m_functionSet);
    const QStringList names = m_functionSet.names();
    m_names.assign(names.begin(), names.end());
    Q_ASSERT(m_names.size() < 0x7fff);
    const std::size_t capacity = std::bit_ceil(m_names.size() * 2 + 1);
    m_slots.assign(capacity, kNone);
    m_mask = capacity - 1;
    for (std::size_t id = 0; id < m_names.size(); ++id) {
        std::size_t slot = foldedHash(m_names[id]) & m_mask;
        while (m_slots[slot] != kNone)
            slot = (slot + 1) & m_mask;
        m_slots[slot] = qint16(id);
    }
    m_functionSet.indexBuiltIns(*this);
}

std::size_t BuiltInFunctionTable::foldedHash(QStringView name)
{
    std::size_t hash = 1469598103934665603ull;
    for (QChar c : name) {
        hash ^= casefolding::fold(c.unicode());
        hash *= 1099511628211ull;
    }
    return hash ^ (hash >> 29);
}

qint16 BuiltInFunctionTable::find(QStringView name) const
{
    for (std::size_t slot = foldedHash(name) & m_mask;; slot = (slot + 1) & m_mask) {
        const qint16 id = m_slots[slot];
        if (id == kNone || casefolding::equal(m_names[std::size_t(id)], name))
            return id;
    }
}

} // namespace scrivlet::math
