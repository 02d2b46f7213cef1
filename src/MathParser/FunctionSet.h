#pragma once

#include "MathParser/FunctionRegistration.h"
#include "MathParser/FunctionRegistrationError.h"

#include <QString>
#include <QStringView>

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace scrivlet::math {

class BuiltInFunctionTable;

// The evaluator's table of named functions and constants. Operators reach it too, by their
// function name. A set that is not case-sensitive treats "PI" and "pi" as one name; lookups
// compare case-insensitively in place instead of lower-casing the name first, since a lookup
// happens for every operator of every line evaluated.
class FunctionSet {
public:
    explicit FunctionSet(bool caseSensitive = false);

    // The full set of built-in functions.
    static FunctionSet builtIn(bool caseSensitive = false);

    bool caseSensitive() const { return m_caseSensitive; }

    std::optional<FunctionRegistrationError> registerFunction(const Function &function);
    std::optional<FunctionRegistrationError> registerAlias(const QString &alias, const QString &existingName);
    std::optional<FunctionRegistrationError> removeFunction(const QString &name);

    const Function *find(QStringView name) const;
    // What find() returns for the built-in name numbered id in BuiltInFunctionTable; only
    // for sets that are not case-sensitive, where the number stands for every spelling.
    const Function *findBuiltIn(qint16 id) const { return m_builtIns[std::size_t(id)]; }
    bool contains(QStringView name) const { return find(name) != nullptr; }
    // Every registered name, aliases included.
    QStringList names() const;

private:
    friend class BuiltInFunctionTable;
    // The built-in table's own set is filled before there is a table to index it by.
    struct Unindexed {};
    FunctionSet(bool caseSensitive, Unindexed);
    void indexBuiltIns(const BuiltInFunctionTable &table);
    void reindexBuiltIns();

    struct NameHash {
        using is_transparent = void;
        bool caseSensitive = false;
        std::size_t operator()(QStringView name) const;
        std::size_t operator()(const QString &name) const { return (*this)(QStringView(name)); }
    };
    struct NameEqual {
        using is_transparent = void;
        bool caseSensitive = false;
        bool operator()(QStringView a, QStringView b) const;
    };

    bool m_caseSensitive;
    std::unordered_map<QString, std::shared_ptr<FunctionRegistration>, NameHash, NameEqual> m_functionsByName;
    bool m_indexesBuiltIns = true;
    // By built-in name number: the function registered under that name here, or null.
    std::vector<const Function *> m_builtIns;
};

} // namespace scrivlet::math
