#pragma once

#include <QString>

namespace scrivlet {

// How the last change of a note's text came about, as the editor recorded it.
// `delete_` is the backward or forward delete key (the plain word is reserved in C++).
enum class UserActionType { keydown, delete_, copy, cut, paste, drag, mouseDown, selected };

inline QString userActionTypeName(UserActionType action)
{
    switch (action) {
    case UserActionType::keydown: return QStringLiteral("keydown");
    case UserActionType::delete_: return QStringLiteral("delete");
    case UserActionType::copy: return QStringLiteral("copy");
    case UserActionType::cut: return QStringLiteral("cut");
    case UserActionType::paste: return QStringLiteral("paste");
    case UserActionType::drag: return QStringLiteral("drag");
    case UserActionType::mouseDown: return QStringLiteral("mouseDown");
    case UserActionType::selected: return QStringLiteral("selected");
    }
    return {};
}

} // namespace scrivlet
