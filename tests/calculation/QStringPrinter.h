#pragma once

#include <QString>

#include <ostream>

// Failures show the text, not its UTF-16 units. QString lives in the global namespace,
// so that is where GoogleTest looks for its printer.
inline void PrintTo(const QString &s, std::ostream *os)
{
    *os << '"' << s.toStdString() << '"';
}
