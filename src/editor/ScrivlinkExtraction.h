#pragma once

#include "notes/Scrivlink.h"

#include <QString>

#include <vector>

namespace scrivlet {

// The URLs written in full in `text`, in text order, each with its range; a trailing
// "." is left out, and so is anything whose host isn't a real-looking host (a known
// domain ending, "localhost" or four dotted numbers). `shortenedUrl` is empty.
std::vector<Scrivlink> extractFullLinks(const QString &text);

// The short forms "+host/...tail+" standing in `text`, in text order, each with its
// range; `shortenedUrl` is the whole form with its "+" marks, `fullUrl` is empty.
std::vector<Scrivlink> extractShortenedLinks(const QString &text);

// Whether `candidate` is exactly one short form, as `extractShortenedLinks` finds it:
// a short form that wouldn't be found again must never be written into a note.
bool isWholeShortForm(const QString &candidate);

} // namespace scrivlet
