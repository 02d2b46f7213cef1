#pragma once

#include <QString>
#include <QVariantList>

namespace scrivlet {

// A condition on stored notes for `CoreDataManager::fetchMatching`: an SQL boolean
// expression over the columns of the notes table (named as the record's fields:
// `content`, `dbIndex`, `isSlotted`, `softDeleted`, `lastModified`...), with `?` for
// each value, bound in order. Values may be QString, bool, integers, double, QDateTime
// (stored as milliseconds since 1970 UTC), QUuid or QByteArray; a null QVariant binds
// NULL. Search builds these; values are never spliced into the text.
struct NotePredicate {
    QString where;
    QVariantList values;

    // Notes outside The Void; rows from older versions may hold no deletion flag.
    static NotePredicate live() { return {QStringLiteral("(softDeleted = 0 OR softDeleted IS NULL)"), {}}; }

    // Both conditions.
    NotePredicate operator&&(const NotePredicate &other) const
    {
        return {QLatin1Char('(') % where % QStringLiteral(") AND (") % other.where % QLatin1Char(')'),
                values + other.values};
    }
};

} // namespace scrivlet
