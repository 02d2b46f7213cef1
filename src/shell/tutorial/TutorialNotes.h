#pragma once

#include <QStringList>

namespace scrivlet {

class NumberLocale;

// The notes a new installation starts with: a chain that teaches the keywords by doing
// them, with a few jokes at the deep end for those who keep swiping. Users whose
// numbers use a decimal comma get amounts written their way, so the sums in those
// notes work as they read.
class TutorialNotes final {
public:
    static constexpr int kCount = 17;

    enum class Variant { point, comma };

    // "," or ",," as the decimal separator picks the comma variant; anything else,
    // or no separator at all, the point variant.
    static Variant variantFor(const NumberLocale &locale);

    // Front note first: "Welcome to Scrivlet!" is number one, the deepest note last.
    static QStringList texts(Variant variant);

    // The order in which a fresh stack is seeded, deepest first, so that the welcome
    // note ends up as the newest, front note.
    static QStringList seedingOrder(const NumberLocale &locale);
};

} // namespace scrivlet
