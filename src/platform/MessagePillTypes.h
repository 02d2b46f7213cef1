#pragma once

#include <QString>

namespace scrivlet {

// The kinds of message pill, as the `type` of "MessagePillNotification".
struct MessagePillTypes {
    static QString success() { return QStringLiteral("success"); }
    static QString info() { return QStringLiteral("info"); }
    static QString warning() { return QStringLiteral("warning"); }
    static QString error() { return QStringLiteral("error"); }
    static QString scrivlink() { return QStringLiteral("scrivlink"); }
    static QString blank() { return QStringLiteral("blank"); }
};

} // namespace scrivlet
