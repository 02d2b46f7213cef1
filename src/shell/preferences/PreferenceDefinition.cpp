#include "shell/preferences/PreferenceDefinition.h"

#include <cmath>

namespace scrivlet {

namespace {

bool isString(const QVariant &v)
{
    return v.typeId() == QMetaType::QString;
}

bool isIntegral(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return false;
    }
}

} // namespace

std::optional<QVariant> PreferenceDefinition::coerce(const QVariant &stored) const
{
    if (!stored.isValid())
        return std::nullopt;
    switch (type) {
    case PreferenceType::Bool:
        if (stored.typeId() == QMetaType::Bool)
            return stored;
        if (isString(stored)) {
            const QString s = stored.toString().trimmed().toLower();
            if (s == u"true" || s == u"yes" || s == u"1")
                return QVariant(true);
            if (s == u"false" || s == u"no" || s == u"0")
                return QVariant(false);
        }
        return std::nullopt;
    case PreferenceType::Int: {
        if (isIntegral(stored)) {
            bool ok = false;
            const qlonglong v = stored.toLongLong(&ok);
            if (ok && v >= std::numeric_limits<int>::min() && v <= std::numeric_limits<int>::max())
                return QVariant(int(v));
            return std::nullopt;
        }
        if (isString(stored)) {
            bool ok = false;
            const int v = stored.toString().trimmed().toInt(&ok);
            if (ok)
                return QVariant(v);
        }
        return std::nullopt;
    }
    case PreferenceType::Double: {
        if (stored.typeId() == QMetaType::Double || stored.typeId() == QMetaType::Float || isIntegral(stored))
            return QVariant(stored.toDouble());
        if (isString(stored)) {
            bool ok = false;
            const double v = stored.toString().trimmed().toDouble(&ok);
            if (ok && std::isfinite(v))
                return QVariant(v);
        }
        return std::nullopt;
    }
    case PreferenceType::String:
        if (isString(stored))
            return stored;
        return std::nullopt;
    case PreferenceType::Word:
        if (isString(stored) && words.contains(stored.toString()))
            return stored;
        return std::nullopt;
    }
    return std::nullopt;
}

QString PreferenceDefinition::typeName() const
{
    switch (type) {
    case PreferenceType::Bool: return QStringLiteral("bool");
    case PreferenceType::Int: return QStringLiteral("integer");
    case PreferenceType::Double: return QStringLiteral("double");
    case PreferenceType::String: return QStringLiteral("string");
    case PreferenceType::Word: return QStringLiteral("one of ") + words.join(QStringLiteral(", "));
    }
    return {};
}

} // namespace scrivlet
