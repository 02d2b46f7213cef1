#pragma once

#include <QString>

namespace scrivlet::test {

// The text the crash-test writer stores with save number n. Long enough that a save
// spans several pages of the store, and different on every save.
struct StoreWriterText {
    static QString contentFor(long save)
    {
        return QStringLiteral("save %1\n").arg(save) + QStringLiteral("line of note text %1 ").arg(save).repeated(200);
    }
};

} // namespace scrivlet::test
