#pragma once

#include "platform/TextRange.h"

#include <QString>
#include <QUuid>

namespace scrivlet {

// A long link shown in a short form; `currentRange` is where the short form stands in
// the note's text.
struct Scrivlink {
    QUuid id = QUuid::createUuid();
    QString fullUrl;
    QString shortenedUrl;
    TextRange currentRange;

    friend bool operator==(const Scrivlink &, const Scrivlink &) = default;
};

} // namespace scrivlet
