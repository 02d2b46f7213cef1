#include "notes/SlottedNoteDefaults.h"

namespace scrivlet {

QString SlottedNoteDefaults::defaultText(int slotIndex)
{
    switch (slotIndex) {
    case 1:
        return QStringLiteral("# Hermes\n\nThis is your **first of nine** slotted note. \n\nIt'll stay with you.     ");
    case 2:
        return QStringLiteral("# Aphrodite");
    case 3:
        return QStringLiteral("# Gaia");
    case 4:
        return QStringLiteral("# Ares");
    case 5:
        return QStringLiteral("# Zeus");
    case 6:
        return QStringLiteral("# Cronus");
    case 7:
        return QStringLiteral("# Ouranos");
    case 8:
        return QStringLiteral("# Poseidon");
    case 9:
        return QStringLiteral("# Hades");
    default:
        return QString();
    }
}

} // namespace scrivlet
