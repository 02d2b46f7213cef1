#pragma once

#include "notes/Note.h"
#include "notes/NoteViewModel.h"
#include "notes/SearchResults.h"
#include "platform/Debouncer.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/TutorialPreferences.h"

#include <QSet>
#include <QStringList>
#include <QUuid>

#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

class Alerts;
class Clock;
class CoreDataManager;
class SettingsStore;

// The part of the stack that is in memory, the open note of the stack and of the
// slots, and every way the user moves between notes. Only a window of the stack is
// loaded: the newest 100 at first, 100 more each time the user walks near the old
// end, and it shrinks again when the app resigns. Every refusal tells the user why
// with a message pill.
//
// Used on the main thread only. The app makes one and calls `setUp` once.
class CoreDataNotesManager {
    Q_DISABLE_COPY_MOVE(CoreDataNotesManager)

public:
    enum class SwipeDirection { left, right, none, jump };
    // What observers are told changed.
    enum class Change { noteViewModels, slottedNoteViewModels, currentIndex, slottedIndex, searchResults };
    using Observer = std::function<void(Change)>;
    using ObserverId = quint64;

    static constexpr int kPageSize = 100;

    CoreDataNotesManager(CoreDataManager &store, SettingsStore &settings, NotificationBus &bus, Clock &clock,
                         Alerts &alerts);
    ~CoreDataNotesManager();

    // The first-launch notes, deepest first. Without a source, `populate` leaves the
    // stack and the onboarding flag alone.
    void setTutorialTexts(std::function<QStringList()> source) { m_tutorialTexts = std::move(source); }
    // Whether the app's state forbids moving between notes just now (a modal mode).
    void setNavigationBlocked(std::function<bool()> isBlocked) { m_isNavigationBlocked = std::move(isBlocked); }

    // Makes the slots, seeds a fresh stack, loads it and starts listening.
    void setUp();
    int ensureSlots();
    void populate();

    ObserverId addObserver(Observer observer);
    void removeObserver(ObserverId id);

    // State.
    const NoteViewModelList &noteViewModels() const { return m_noteViewModels; }
    const NoteViewModelList &slottedNoteViewModels() const { return m_slottedNoteViewModels; }
    // The search view's list. Its rows are read from the store as the view asks for them.
    SearchResults &searchResults() { return m_searchResults; }
    const SearchResults &searchResults() const { return m_searchResults; }
    int currentIndex() const { return m_currentIndex; }
    std::optional<QUuid> currentNoteId() const { return m_currentNoteId; }
    int previouslyViewedIndex() const { return m_previouslyViewedIndex; }
    int slottedIndex() const { return m_slottedIndex; }
    const QList<QUuid> &deletedNotes() const { return m_deletedNotes; }
    const Debouncer &remoteChangeDebouncer() const { return m_remoteChangeDebouncer; }
    // The open note of each list; null when the index is out of range. A deleted note
    // still counts as open until the list is cleaned.
    std::shared_ptr<NoteViewModel> currentNote() const;
    std::shared_ptr<NoteViewModel> currentSlottedNote() const;

    void setCurrentIndex(int index);
    void setSlottedIndex(int index);

    // The stack.
    void initializeNotes(bool reload);
    void saveCurrentNote(bool isSlotted);
    void showNextNote(bool saveFirst, bool isSlotted);
    void showPreviousNote(bool saveFirst, bool isSlotted);
    void jumpToLatest();
    void jumpToSlot(int targetIndex);
    std::shared_ptr<NoteViewModel> newNote(const std::optional<QString> &content, bool quiet);
    void deleteNote(const std::shared_ptr<NoteViewModel> &note);
    void removeNote(const std::shared_ptr<NoteViewModel> &note, const std::optional<QString> &content);
    void promoteNote(const QUuid &id);
    void jumpToNote(const QUuid &id);
    void cleanUpAfterMove(SwipeDirection direction);
    void cleanUpDeletedArray();
    void trimLoadedNotes();

    // Outside changes (sync): the stack reloads once they have settled for the
    // debouncer's 0.5 s, keeping the user's place, and "notesManagerReloadedNotes" names
    // every note that changed meanwhile.
    void reloadAfterRemoteChanges(const QSet<QUuid> &changedUUIDs);

    // Search over the whole store, not only the loaded window: every hit, as a whole
    // note, by `dbIndex`.
    std::vector<Note> searchNotes(const QString &query);
    // A keystroke in the search bar: `searchResults` holds the new hits, with the first
    // screenful of rows read. A query too short for the store's index goes on being
    // looked for in slices on the main loop, each announced to observers, until the
    // list is whole. The search view opens on the empty query, every live note, which
    // also reads the order of the stack that the keystrokes after it rely on.
    void updateSearchResults(const QString &query);

    // Rows of the search view read with each keystroke; the rest wait until asked for.
    static constexpr qsizetype kSearchScreenful = 50;

private:
    bool navigationBlocked() const { return m_isNavigationBlocked && m_isNavigationBlocked(); }
    bool isDeleted(const QUuid &id) const { return m_deletedNotes.contains(id); }
    bool isDeletedAt(int index) const;
    int indexOf(const QUuid &id) const;
    NoteViewModelList removeEmptyNotes(const std::vector<Note> &notes, bool keepLast);
    int loadOlderNotes();
    void loadGapTo(const Note &note);
    void appendNewNote();
    void writeContent(const std::shared_ptr<NoteViewModel> &model, const QString &content);
    void pill(const QString &message, const QString &type) const;
    void notify(Change change);
    void searchFurther();

    CoreDataManager &m_store;
    NotificationBus &m_bus;
    Clock &m_clock;
    Alerts &m_alerts;
    NotesPreferences m_preferences;
    TutorialPreferences m_tutorialPreferences;

    NoteViewModelList m_noteViewModels;
    NoteViewModelList m_slottedNoteViewModels;
    int m_slottedIndex = 0;
    SearchResults m_searchResults;
    int m_currentIndex = 0;
    std::optional<QUuid> m_currentNoteId;
    int m_previouslyViewedIndex = 0;
    QList<QUuid> m_deletedNotes;
    Debouncer m_remoteChangeDebouncer;
    QSet<QUuid> m_pendingChangedUUIDs;
    // The next slice of a search still under way; a new query cancels it.
    Debouncer m_searchSlices{m_clock, std::chrono::milliseconds(0)};

    std::function<QStringList()> m_tutorialTexts;
    std::function<bool()> m_isNavigationBlocked;
    std::vector<std::pair<ObserverId, Observer>> m_observers;
    ObserverId m_nextObserverId = 1;
    std::vector<NotificationBus::Subscription> m_subscriptions;
};

} // namespace scrivlet
