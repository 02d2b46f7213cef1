#pragma once

#include <QString>

namespace scrivlet {

// The text each slot starts with: a name from myth. The first slot also says what
// slots are for; slots past the ninth start empty.
struct SlottedNoteDefaults {
    static constexpr int kNamedSlots = 9;
    static QString defaultText(int slotIndex);
};

} // namespace scrivlet
