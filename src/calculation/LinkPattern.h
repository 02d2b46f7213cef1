#pragma once

class QRegularExpression;

namespace scrivlet {

// What counts as a link in note text: a web or ftp address with or without its scheme,
// "localhost" or an IPv4 address, with an optional port and path. Math lines leave a
// line that ends in a link alone, and links are shortened with the same pattern.
const QRegularExpression &linkPattern();

} // namespace scrivlet
