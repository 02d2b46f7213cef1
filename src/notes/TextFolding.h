#pragma once

#include <QString>
#include <QStringView>

namespace scrivlet {

// The form in which search compares text: case-folded, with diacritics taken off
// (decomposed, then every combining mark dropped), so "Café" and "CAFE" read alike.
// The store keeps a folded copy of each note in step with its text, and a query is
// folded the same way before it is looked for.
struct TextFolding {
    static QString fold(QStringView text);
};

} // namespace scrivlet
