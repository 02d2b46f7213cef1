#include "views/LinkInteraction.h"

#include "editor/ScrivlinkPass.h"

#include <QKeyEvent>

namespace scrivlet {

namespace {

// The key as the link guard knows keys: the hardware codes of the system the rules
// were made on, and, for keys that type nothing here, the characters that system
// gives them (arrows and delete type private-use or control characters there).
std::optional<ScrivlinkKeyPress> guardKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Left:
        return ScrivlinkKeyPress{QString(QChar(0xF702)), 123};
    case Qt::Key_Right:
        return ScrivlinkKeyPress{QString(QChar(0xF703)), 124};
    case Qt::Key_Down:
        return ScrivlinkKeyPress{QString(QChar(0xF701)), 125};
    case Qt::Key_Up:
        return ScrivlinkKeyPress{QString(QChar(0xF700)), 126};
    case Qt::Key_Backspace:
        return ScrivlinkKeyPress{QString(QChar(0x7F)), 51};
    case Qt::Key_Delete:
        return ScrivlinkKeyPress{QString(QChar(0xF728)), 117};
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return ScrivlinkKeyPress{QStringLiteral("\r"), 36};
    case Qt::Key_Tab:
        return ScrivlinkKeyPress{QStringLiteral("\t"), 48};
    default:
        break;
    }
    // Shortcuts (copy, select all...) and keys that type nothing (a modifier alone,
    // Home, Esc) never change a link's text.
    if (event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier))
        return std::nullopt;
    if (event.text().isEmpty())
        return std::nullopt;
    return ScrivlinkKeyPress{event.text(), 0};
}

} // namespace

bool LinkInteraction::refusesKey(const QKeyEvent &event)
{
    // The toggle key works on the link at the caret as a click does.
    const bool returnKey = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (returnKey && (event.modifiers() & Qt::ControlModifier) && (event.modifiers() & Qt::ShiftModifier)) {
        m_links.toggleScrivlinkAtCaret();
        return true;
    }
    const auto key = guardKey(event);
    if (!key)
        return false;
    return m_links.preventScrivlinkEditing(key) == ScrivlinkPass::KeyDecision::Refused;
}

bool LinkInteraction::toggleAt(qsizetype position)
{
    return m_links.toggleScrivlinkAt(position);
}

QString LinkInteraction::copiedText(const TextRange &range) const
{
    return m_links.expandedText(range);
}

} // namespace scrivlet
