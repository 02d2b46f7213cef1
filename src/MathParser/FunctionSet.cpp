#include "MathParser/FunctionSet.h"

#include "MathParser/BuiltInFunctionTable.h"
#include "MathParser/BuiltInFunctions.h"
#include "MathParser/CaseFolding.h"

namespace scrivlet::math {

std::size_t FunctionSet::NameHash::operator()(QStringView name) const
{
    if (caseSensitive)
        return qHash(name);
    // FNV-1a over the folded characters: equal for names that differ only in case.
    std::size_t hash = 1469598103934665603ull;
    for (QChar c : name) {
        hash ^= casefolding::fold(c.unicode());
        hash *= 1099511628211ull;
    }
    return hash;
}

bool FunctionSet::NameEqual::operator()(QStringView a, QStringView b) const
{
    return caseSensitive ? a == b : casefolding::equal(a, b);
}

FunctionSet::FunctionSet(bool caseSensitive, Unindexed)
    : m_caseSensitive(caseSensitive),
      m_functionsByName(64, NameHash{.caseSensitive = caseSensitive}, NameEqual{.caseSensitive = caseSensitive}),
      m_indexesBuiltIns(false)
{
}

FunctionSet::FunctionSet(bool caseSensitive) : FunctionSet(caseSensitive, Unindexed{})
{
    m_indexesBuiltIns = true;
    reindexBuiltIns();
}

FunctionSet FunctionSet::builtIn(bool caseSensitive)
{
    if (!caseSensitive)
        return BuiltInFunctionTable::instance().functionSet();
    FunctionSet set(caseSensitive);
    builtins::registerAll(set);
    return set;
}

void FunctionSet::indexBuiltIns(const BuiltInFunctionTable &table)
{
    m_indexesBuiltIns = true;
    // A case-sensitive set tells "PI" from "pi", which one number per name cannot.
    if (m_caseSensitive) {
        m_builtIns.clear();
        return;
    }
    m_builtIns.resize(std::size_t(table.size()));
    for (qint16 id = 0; id < table.size(); ++id)
        m_builtIns[std::size_t(id)] = find(table.name(id));
}

void FunctionSet::reindexBuiltIns()
{
    if (m_indexesBuiltIns)
        indexBuiltIns(BuiltInFunctionTable::instance());
}

std::optional<FunctionRegistrationError> FunctionSet::registerFunction(const Function &function)
{
    for (const QString &name : function.names()) {
        if (m_functionsByName.find(QStringView(name)) != m_functionsByName.end())
            return FunctionRegistrationError(FunctionRegistrationError::Kind::functionAlreadyExists, name);
    }
    // Two aliases of one new function that differ only in case are one name here.
    auto registration = std::make_shared<FunctionRegistration>(function);
    for (const QString &name : function.names())
        m_functionsByName.emplace(name, registration);
    reindexBuiltIns();
    return std::nullopt;
}

std::optional<FunctionRegistrationError> FunctionSet::registerAlias(const QString &alias, const QString &existingName)
{
    const auto existing = m_functionsByName.find(QStringView(existingName));
    if (existing == m_functionsByName.end())
        return FunctionRegistrationError(FunctionRegistrationError::Kind::functionDoesNotExist, existingName);
    if (m_functionsByName.find(QStringView(alias)) != m_functionsByName.end())
        return FunctionRegistrationError(FunctionRegistrationError::Kind::functionAlreadyExists, alias);
    // Copies of a set share registrations; the one that gains a name gets its own.
    auto registration = std::make_shared<FunctionRegistration>(*existing->second);
    registration->addName(alias);
    const std::shared_ptr<FunctionRegistration> old = existing->second;
    for (auto &entry : m_functionsByName) {
        if (entry.second == old)
            entry.second = registration;
    }
    m_functionsByName.emplace(alias, registration);
    reindexBuiltIns();
    return std::nullopt;
}

std::optional<FunctionRegistrationError> FunctionSet::removeFunction(const QString &name)
{
    const auto existing = m_functionsByName.find(QStringView(name));
    if (existing == m_functionsByName.end())
        return FunctionRegistrationError(FunctionRegistrationError::Kind::functionDoesNotExist, name);
    const std::shared_ptr<FunctionRegistration> registration = existing->second;
    std::erase_if(m_functionsByName, [&](const auto &entry) { return entry.second == registration; });
    reindexBuiltIns();
    return std::nullopt;
}

const Function *FunctionSet::find(QStringView name) const
{
    const auto it = m_functionsByName.find(name);
    return it == m_functionsByName.end() ? nullptr : &it->second->function();
}

QStringList FunctionSet::names() const
{
    QStringList result;
    result.reserve(qsizetype(m_functionsByName.size()));
    for (const auto &entry : m_functionsByName)
        result.append(entry.first);
    return result;
}

} // namespace scrivlet::math
