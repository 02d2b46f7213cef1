#include "NoteListing.h"

#include "notes/Note.h"

namespace scrivlet::cli {

namespace {

QString idText(const Note &note)
{
    return note.id.toString(QUuid::WithoutBraces);
}

} // namespace

QString NoteListing::title(const QString &content)
{
    const QStringList lines = content.split(u'\n');
    for (const QString &line : lines) {
        QString text = line.trimmed();
        if (text.isEmpty())
            continue;
        if (text.size() > kTitleLength) {
            qsizetype cut = kTitleLength - 1;
            // Never split an emoji or any other character outside the basic plane.
            if (text.at(cut - 1).isHighSurrogate())
                --cut;
            text = text.left(cut).trimmed() % QStringLiteral("…");
        }
        return text;
    }
    return content.isEmpty() ? QStringLiteral("(empty)") : QStringLiteral("(blank)");
}

QString NoteListing::stackLine(const Note &note, bool isOpen)
{
    return (isOpen ? QStringLiteral("* ") : QStringLiteral("  ")) % idText(note) % QStringLiteral("  ") %
           title(note.content);
}

QString NoteListing::slotLine(const Note &note, bool isOpen)
{
    return (isOpen ? QStringLiteral("* ") : QStringLiteral("  ")) % QString::number(note.slotIndex.value_or(0)) %
           QStringLiteral("  ") % idText(note) % QStringLiteral("  ") % title(note.content);
}

QString NoteListing::searchLine(const Note &note)
{
    const QString slot = note.isSlotted && note.slotIndex
                             ? QStringLiteral("[slot ") % QString::number(*note.slotIndex) % QStringLiteral("] ")
                             : QString();
    return idText(note) % QStringLiteral("  ") % slot % title(note.content);
}

QString NoteListing::voidLine(const Note &note)
{
    const QString when = note.deletedAt ? note.deletedAt->toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"))
                                        : QStringLiteral("----------------");
    return idText(note) % QStringLiteral("  ") % when % QStringLiteral("  ") % title(note.content);
}

} // namespace scrivlet::cli
