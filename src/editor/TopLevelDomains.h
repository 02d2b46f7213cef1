#pragma once

#include <QStringView>

namespace scrivlet {

// Whether `label` (any case) is a domain ending that people write in notes: the
// generic endings and every country code. It keeps "file.txt" or "v1.2" from being
// taken for a link.
bool isKnownTopLevelDomain(QStringView label);

} // namespace scrivlet
