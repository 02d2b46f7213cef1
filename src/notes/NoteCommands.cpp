#include "notes/NoteCommands.h"

#include "notes/CoreDataNotesManager.h"
#include "platform/MessagePillTypes.h"
#include "platform/NotificationBus.h"

namespace scrivlet {

using SwipeDirection = CoreDataNotesManager::SwipeDirection;

NoteCommands::NoteCommands(CoreDataNotesManager &notes, SettingsStore &settings, NotificationBus &bus)
    : m_notes(notes), m_bus(bus), m_preferences(settings)
{
}

bool NoteCommands::isInSlottedPane(bool slottedViewActive) const
{
    return (m_preferences.isSplitView() && slottedViewActive) || m_preferences.isSlottedMain();
}

void NoteCommands::next(bool slottedViewActive)
{
    const bool slotted = isInSlottedPane(slottedViewActive);
    m_notes.showNextNote(true, slotted);
    if (!slotted)
        m_notes.cleanUpAfterMove(SwipeDirection::left);
}

void NoteCommands::previous(bool slottedViewActive)
{
    const bool slotted = isInSlottedPane(slottedViewActive);
    m_notes.showPreviousNote(true, slotted);
    if (!slotted)
        m_notes.cleanUpAfterMove(SwipeDirection::right);
}

void NoteCommands::newNote(bool slottedViewActive, bool quiet)
{
    if (isInSlottedPane(slottedViewActive)) {
        m_bus.postMessagePill(QStringLiteral("New notes can only be created in the ephemeral pane"),
                              MessagePillTypes::warning());
        return;
    }
    m_notes.newNote(std::nullopt, quiet);
    m_notes.cleanUpAfterMove(SwipeDirection::jump);
}

void NoteCommands::deleteOpenNote(bool slottedViewActive)
{
    if (isInSlottedPane(slottedViewActive)) {
        m_bus.postMessagePill(QStringLiteral("Slotted notes cannot be deleted"), MessagePillTypes::warning());
        return;
    }
    m_notes.deleteNote(m_notes.currentNote());
    m_notes.cleanUpAfterMove(SwipeDirection::right);
}

void NoteCommands::promoteOpenNote(bool slottedViewActive)
{
    if (isInSlottedPane(slottedViewActive)) {
        m_bus.postMessagePill(QStringLiteral("Slotted notes cannot be moved to front"), MessagePillTypes::warning());
        return;
    }
    if (const auto open = m_notes.currentNote())
        m_notes.promoteNote(open->id());
}

void NoteCommands::jumpToFront(bool slottedViewActive)
{
    if (isInSlottedPane(slottedViewActive)) {
        m_bus.postMessagePill(QStringLiteral("Slotted notes don't have a front position"),
                              MessagePillTypes::warning());
        return;
    }
    m_notes.jumpToLatest();
    m_notes.cleanUpAfterMove(SwipeDirection::jump);
}

void NoteCommands::saveBothPanes()
{
    m_notes.saveCurrentNote(false);
    m_notes.saveCurrentNote(true);
}

void NoteCommands::toggleSplit()
{
    saveBothPanes();
    m_preferences.setIsSplitView(!m_preferences.isSplitView());
}

void NoteCommands::swapPanes()
{
    saveBothPanes();
    m_preferences.setIsSlottedMain(!m_preferences.isSlottedMain());
}

} // namespace scrivlet
