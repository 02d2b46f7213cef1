#include "notes/CoreDataNotesManager.h"

#include "notes/CoreDataManager.h"
#include "notes/NotesLogging.h"
#include "notes/NotesReloadedNotification.h"
#include "notes/SearchQuery.h"
#include "notes/TextFolding.h"
#include "platform/Alerts.h"
#include "platform/Clock.h"
#include "platform/MessagePillTypes.h"

#include <algorithm>

namespace scrivlet {

namespace {

using namespace std::chrono_literals;

// Walking old-wards loads more while this many live notes are still below, so the
// user never waits at the edge of what is loaded.
constexpr int kLoadAheadMargin = 10;
// Trimming keeps this many older notes below the open one.
constexpr int kTrimKeepBelow = 10;
// The longest the search holds the main loop at a time: one frame at 120 Hz.
constexpr std::chrono::milliseconds kSearchSlice = 8ms;

QString idText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces);
}

NoteViewModelList toModels(const std::vector<Note> &notes)
{
    NoteViewModelList models;
    models.reserve(notes.size());
    for (const Note &note : notes)
        models.push_back(std::make_shared<NoteViewModel>(note));
    return models;
}

} // namespace

CoreDataNotesManager::CoreDataNotesManager(CoreDataManager &store, SettingsStore &settings, NotificationBus &bus,
                                           Clock &clock, Alerts &alerts)
    : m_store(store), m_bus(bus), m_clock(clock), m_alerts(alerts), m_preferences(settings),
      m_tutorialPreferences(settings), m_remoteChangeDebouncer(clock, 500ms)
{
}

CoreDataNotesManager::~CoreDataNotesManager() = default;

void CoreDataNotesManager::setUp()
{
    ensureSlots();
    populate();
    initializeNotes(false);

    m_subscriptions.push_back(m_bus.subscribe(QStringLiteral("refetchNotes"), [this](const QVariantMap &) {
        // Posted from anywhere, answered on the main loop once the poster is done.
        m_clock.schedule(0ms, [this] {
            initializeNotes(true);
            cleanUpDeletedArray();
        });
    }));
    m_subscriptions.push_back(m_bus.subscribe(QStringLiteral("saveCurrentNote"),
                                              [this](const QVariantMap &) { saveCurrentNote(false); }));
    m_subscriptions.push_back(m_bus.subscribe(QStringLiteral("cleanUpDeletedArray"), [this](const QVariantMap &) {
        cleanUpDeletedArray();
        trimLoadedNotes();
    }));
    m_subscriptions.push_back(
        m_bus.subscribe(QStringLiteral("reloadDB"), [this](const QVariantMap &) { initializeNotes(false); }));
}

int CoreDataNotesManager::ensureSlots()
{
    return m_store.ensureSlots();
}

void CoreDataNotesManager::populate()
{
    if (!m_tutorialTexts) {
        qCDebug(lcNotes) << "No tutorial notes to seed the stack with";
        return;
    }
    if (m_store.countStackRows() == 0 && m_tutorialPreferences.showOnboarding()) {
        // The flag goes first: a stack the user empties later never gets them again.
        m_tutorialPreferences.setShowOnboarding(false);
        const QStringList texts = m_tutorialTexts();
        // A fixed anchor gives every machine the same dates, so sync can pair the copies.
        const QDateTime anchor = CoreDataManager::onboardingAnchorDate();
        for (qsizetype position = 0; position < texts.size(); ++position)
            m_store.insertTutorialNote(texts.at(position), anchor.addSecs(position));
    }
    m_store.save();
}

// ---- observers -------------------------------------------------------------------------

CoreDataNotesManager::ObserverId CoreDataNotesManager::addObserver(Observer observer)
{
    const ObserverId id = m_nextObserverId++;
    m_observers.emplace_back(id, std::move(observer));
    return id;
}

void CoreDataNotesManager::removeObserver(ObserverId id)
{
    std::erase_if(m_observers, [id](const auto &entry) { return entry.first == id; });
}

void CoreDataNotesManager::notify(Change change)
{
    const auto observers = m_observers; // an observer may remove itself
    for (const auto &[id, observer] : observers)
        observer(change);
}

void CoreDataNotesManager::pill(const QString &message, const QString &type) const
{
    m_bus.postMessagePill(message, type);
}

// ---- state -----------------------------------------------------------------------------

std::shared_ptr<NoteViewModel> CoreDataNotesManager::currentNote() const
{
    if (m_currentIndex < 0 || m_currentIndex >= int(m_noteViewModels.size()))
        return nullptr;
    return m_noteViewModels[std::size_t(m_currentIndex)];
}

std::shared_ptr<NoteViewModel> CoreDataNotesManager::currentSlottedNote() const
{
    if (m_slottedIndex < 0 || m_slottedIndex >= int(m_slottedNoteViewModels.size()))
        return nullptr;
    return m_slottedNoteViewModels[std::size_t(m_slottedIndex)];
}

void CoreDataNotesManager::setCurrentIndex(int index)
{
    const bool moved = index != m_currentIndex;
    m_currentIndex = index;
    const auto open = currentNote();
    m_currentNoteId = open ? std::optional<QUuid>(open->id()) : std::nullopt;
    // Observers hear of real moves only: AutoPaste starts over on another note.
    if (moved)
        notify(Change::currentIndex);
}

void CoreDataNotesManager::setSlottedIndex(int index)
{
    const bool moved = index != m_slottedIndex;
    m_slottedIndex = index;
    if (moved)
        notify(Change::slottedIndex);
}

bool CoreDataNotesManager::isDeletedAt(int index) const
{
    return isDeleted(m_noteViewModels[std::size_t(index)]->id());
}

int CoreDataNotesManager::indexOf(const QUuid &id) const
{
    for (std::size_t i = 0; i < m_noteViewModels.size(); ++i) {
        if (m_noteViewModels[i]->id() == id)
            return int(i);
    }
    return -1;
}

// ---- loading -----------------------------------------------------------------------------

NoteViewModelList CoreDataNotesManager::removeEmptyNotes(const std::vector<Note> &notes, bool keepLast)
{
    NoteViewModelList models;
    models.reserve(notes.size());
    for (std::size_t i = 0; i < notes.size(); ++i) {
        const Note &note = notes[i];
        const bool isLast = i + 1 == notes.size();
        if (note.content.isEmpty() && !(keepLast && isLast)) {
            // Empty notes left behind by earlier runs go for good, not to The Void.
            m_store.deleteRow(note.id);
            m_deletedNotes.append(note.id);
            continue;
        }
        if (!isDeleted(note.id))
            models.push_back(std::make_shared<NoteViewModel>(note));
    }
    return models;
}

void CoreDataNotesManager::appendNewNote()
{
    m_noteViewModels.push_back(std::make_shared<NoteViewModel>(m_store.createNote()));
}

void CoreDataNotesManager::initializeNotes(bool reload)
{
    const int duplicates = m_store.removeDuplicateNotes();
    if (duplicates > 0)
        qCInfo(lcNotes) << "Removed" << duplicates << "duplicate notes";

    const std::vector<Note> latest = m_store.fetchLatest(kPageSize, false);
    if (reload) {
        // A note that comes back live was restored, here or on another machine: it is
        // no longer one to skip or to drop at the next clean-up.
        for (const Note &note : latest)
            m_deletedNotes.removeAll(note.id);
    }
    m_noteViewModels = reload ? toModels(latest) : removeEmptyNotes(latest, false);

    if (m_noteViewModels.empty())
        appendNewNote();
    else if (m_preferences.launchWithNewNote() && !m_noteViewModels.back()->note().content.isEmpty())
        appendNewNote();

    const int last = std::max(0, int(m_noteViewModels.size()) - 1);
    int index = last;
    if (reload) {
        const int found = m_currentNoteId ? indexOf(*m_currentNoteId) : -1;
        index = found >= 0 ? found : std::clamp(m_previouslyViewedIndex, 0, last);
    }
    // The list was replaced: the same number may now be another note.
    m_currentIndex = -1;
    setCurrentIndex(index);
    m_previouslyViewedIndex = m_currentIndex;
    notify(Change::noteViewModels);

    m_slottedNoteViewModels = toModels(m_store.fetchLatest(0, true));
    const int lastSlot = std::max(0, int(m_slottedNoteViewModels.size()) - 1);
    m_slottedIndex = -1;
    setSlottedIndex(std::clamp(m_preferences.lastActiveSlottedNote(), 0, lastSlot));
    notify(Change::slottedNoteViewModels);
}

int CoreDataNotesManager::loadOlderNotes()
{
    const auto firstLive = std::find_if(m_noteViewModels.begin(), m_noteViewModels.end(),
                                        [this](const auto &model) { return !isDeleted(model->id()); });
    if (firstLive == m_noteViewModels.end())
        return 0;
    NoteViewModelList older = removeEmptyNotes(m_store.fetchBefore((*firstLive)->note(), kPageSize), false);
    const int loaded = int(older.size());
    if (loaded == 0)
        return 0;
    m_noteViewModels.insert(m_noteViewModels.begin(), older.begin(), older.end());
    // The note seen before keeps its identity, whatever its number became.
    m_previouslyViewedIndex += loaded;
    return loaded;
}

// ---- saving ------------------------------------------------------------------------------

void CoreDataNotesManager::saveCurrentNote(bool isSlotted)
{
    const auto open = isSlotted ? currentSlottedNote() : currentNote();
    if (!open)
        return;
    m_store.saveFromEditor(open->note(), &m_noteViewModels, &m_slottedNoteViewModels);
}

void CoreDataNotesManager::writeContent(const std::shared_ptr<NoteViewModel> &model, const QString &content)
{
    Note note = model->note();
    note.content = content;
    model->setNote(note);
    m_store.saveFromEditor(note, &m_noteViewModels, &m_slottedNoteViewModels);
}

// ---- walking -----------------------------------------------------------------------------

void CoreDataNotesManager::showNextNote(bool saveFirst, bool isSlotted)
{
    if (navigationBlocked())
        return;
    if (isSlotted) {
        if (saveFirst)
            saveCurrentNote(true);
        if (m_slottedIndex >= int(m_slottedNoteViewModels.size()) - 1) {
            pill(QStringLiteral("Cannot escape Sol"), MessagePillTypes::warning());
            return;
        }
        setSlottedIndex(m_slottedIndex + 1);
        m_preferences.setLastActiveSlottedNote(m_slottedIndex);
        return;
    }

    if (saveFirst)
        saveCurrentNote(false);
    const int last = int(m_noteViewModels.size()) - 1;
    int index = m_currentIndex;
    while (index < last) {
        ++index;
        if (!isDeletedAt(index)) {
            setCurrentIndex(index);
            return;
        }
    }
    if (last >= 0) {
        setCurrentIndex(last);
        const auto newest = m_noteViewModels.back();
        if (!isDeleted(newest->id()) && newest->note().content.isEmpty()) {
            pill(QStringLiteral("Already at latest"), MessagePillTypes::warning());
            return;
        }
    }
    // Past the newest note the user gets a fresh one, unless the newest is still empty.
    pill(QStringLiteral("New note created"), MessagePillTypes::success());
    appendNewNote();
    saveCurrentNote(false);
    setCurrentIndex(int(m_noteViewModels.size()) - 1);
    notify(Change::noteViewModels);
}

void CoreDataNotesManager::showPreviousNote(bool saveFirst, bool isSlotted)
{
    if (navigationBlocked())
        return;
    if (isSlotted) {
        if (saveFirst)
            saveCurrentNote(true);
        if (m_slottedIndex < 1) {
            pill(QStringLiteral("Icarus, you'll burn."), MessagePillTypes::warning());
            return;
        }
        setSlottedIndex(m_slottedIndex - 1);
        m_preferences.setLastActiveSlottedNote(m_slottedIndex);
        return;
    }

    if (saveFirst)
        saveCurrentNote(false);
    const int start = m_currentIndex;
    int found = std::min(m_currentIndex, int(m_noteViewModels.size())) - 1;
    while (found >= 0 && isDeletedAt(found))
        --found;
    if (found < 0) {
        setCurrentIndex(start);
        pill(QStringLiteral("No older notes"), MessagePillTypes::warning());
        return;
    }

    int liveBelow = 0;
    for (int i = found - 1; i >= 0 && liveBelow < kLoadAheadMargin; --i) {
        if (!isDeletedAt(i))
            ++liveBelow;
    }
    if (liveBelow >= kLoadAheadMargin) {
        setCurrentIndex(found);
        return;
    }
    const int loaded = loadOlderNotes();
    setCurrentIndex(found + loaded);
    if (loaded > 0)
        notify(Change::noteViewModels);
}

void CoreDataNotesManager::jumpToLatest()
{
    if (navigationBlocked())
        return;
    saveCurrentNote(false);
    int found = -1;
    for (int i = int(m_noteViewModels.size()) - 1; i >= std::max(0, m_currentIndex); --i) {
        if (!isDeletedAt(i)) {
            found = i;
            break;
        }
    }
    if (found < 0 || found == m_currentIndex) {
        pill(QStringLiteral("Already on latest"), MessagePillTypes::warning());
        return;
    }
    setCurrentIndex(found);
    pill(QStringLiteral("Jumped to latest"), MessagePillTypes::success());
}

void CoreDataNotesManager::jumpToSlot(int targetIndex)
{
    if (navigationBlocked())
        return;
    saveCurrentNote(true);
    if (m_slottedIndex == targetIndex) {
        pill(QStringLiteral("Already on (index: ") % QString::number(targetIndex) % QLatin1Char(')'),
             MessagePillTypes::warning());
        return;
    }
    if (targetIndex < 0 || targetIndex >= int(m_slottedNoteViewModels.size())) {
        qCWarning(lcNotes) << "slotted - no slot at index" << targetIndex;
        return;
    }
    setSlottedIndex(targetIndex);
    m_preferences.setLastActiveSlottedNote(targetIndex);
}

// ---- new, delete, promote -------------------------------------------------------------------

std::shared_ptr<NoteViewModel> CoreDataNotesManager::newNote(const std::optional<QString> &content, bool quiet)
{
    const int last = int(m_noteViewModels.size()) - 1;
    if (last >= 0) {
        const auto newest = m_noteViewModels.back();
        const bool newestEmpty = newest->note().content.isEmpty();
        if (m_currentIndex == last && newestEmpty) {
            if (content)
                writeContent(newest, *content);
            if (!quiet)
                pill(QStringLiteral("Don't waste trees. Use this note."), MessagePillTypes::warning());
            return newest;
        }
        if (newestEmpty && !isDeleted(newest->id())) {
            saveCurrentNote(false);
            setCurrentIndex(last);
            if (content)
                writeContent(newest, *content);
            if (!quiet)
                pill(QStringLiteral("Use latest empty note"), MessagePillTypes::info());
            return newest;
        }
    }

    saveCurrentNote(false);
    appendNewNote();
    setCurrentIndex(int(m_noteViewModels.size()) - 1);
    notify(Change::noteViewModels);
    const auto created = m_noteViewModels.back();
    if (content)
        writeContent(created, *content);
    pill(QStringLiteral("New note created"), MessagePillTypes::success());
    return created;
}

void CoreDataNotesManager::cleanUpAfterMove(SwipeDirection direction)
{
    const int previous = m_previouslyViewedIndex;
    const int count = int(m_noteViewModels.size());
    if (previous != m_currentIndex && previous >= 0 && previous < count && !isDeletedAt(previous)) {
        const auto abandoned = m_noteViewModels[std::size_t(previous)];
        const bool empty = abandoned->note().content.isEmpty();
        bool remove = false;
        switch (direction) {
        case SwipeDirection::jump:
        case SwipeDirection::left:
            remove = m_currentIndex >= 1 && empty;
            break;
        case SwipeDirection::right:
            // A user who walks down from an empty top note keeps it for the way back.
            remove = empty && previous != count - 1;
            break;
        case SwipeDirection::none:
            break;
        }
        if (remove) {
            pill(QStringLiteral("Empty note deleted"), MessagePillTypes::info());
            removeNote(abandoned, std::nullopt);
        }
    }
    m_previouslyViewedIndex = m_currentIndex;
}

void CoreDataNotesManager::deleteNote(const std::shared_ptr<NoteViewModel> &note)
{
    if (!note)
        return;
    if (note->note().isSlotted) {
        pill(QStringLiteral("Slotted notes cannot be deleted"), MessagePillTypes::warning());
        return;
    }
    if (indexOf(note->id()) < 0)
        return;
    const auto live = std::count_if(m_noteViewModels.begin(), m_noteViewModels.end(),
                                    [this](const auto &model) { return !isDeleted(model->id()); });
    if (live == 1 && !isDeleted(note->id()) && note->note().content.trimmed().isEmpty()) {
        pill(QStringLiteral("Nothing to delete"), MessagePillTypes::warning());
        return;
    }

    if (!m_tutorialPreferences.suppressDeleteWarning()) {
        const Alerts::Response answer = m_alerts.ask(
            {QStringLiteral("Delete Note"), QStringLiteral("Impermanence will set you free."),
             {QStringLiteral("Send to The Void"), QStringLiteral("Cancel")}, QStringLiteral("Don't ask again.")});
        // The box counts whichever button was pressed.
        if (answer.suppressionChecked)
            m_tutorialPreferences.setSuppressDeleteWarning(true);
        if (answer.button != 0)
            return;
    }

    pill(QStringLiteral("Note deleted"), MessagePillTypes::success());
    removeNote(note, note->note().content);

    int index = m_currentIndex;
    while (index >= 1) {
        --index;
        if (!isDeletedAt(index)) {
            setCurrentIndex(index);
            return;
        }
    }
    setCurrentIndex(std::min(index, std::max(0, int(m_noteViewModels.size()) - 1)));
    showNextNote(false, false);
}

void CoreDataNotesManager::removeNote(const std::shared_ptr<NoteViewModel> &note, const std::optional<QString> &content)
{
    if (!note)
        return;
    const QUuid id = note->id();
    if (isDeleted(id)) {
        qCDebug(lcNotes).noquote() << "We tried to delete" << idText(id) << "twice";
        return;
    }
    if (!m_store.softDelete(id))
        return;
    m_deletedNotes.append(id);
    // The last keystrokes go to The Void with the note.
    if (content)
        m_store.setContent(id, *content);
    // Empty notes don't go to The Void.
    m_store.deleteIfEmpty(id);
}

void CoreDataNotesManager::promoteNote(const QUuid &id)
{
    if (!m_noteViewModels.empty() && m_noteViewModels.back()->id() == id) {
        pill(QStringLiteral("Note is already first"), MessagePillTypes::warning());
        return;
    }
    const int index = indexOf(id);
    if (index < 0) {
        const auto note = m_store.fetchNote(id);
        if (!note || note->softDeleted || note->isSlotted) {
            pill(QStringLiteral("Note not found."), MessagePillTypes::warning());
            return;
        }
        auto model = std::make_shared<NoteViewModel>(*note);
        m_noteViewModels.push_back(model);
        setCurrentIndex(int(m_noteViewModels.size()) - 1);
        if (const auto dbIndex = m_store.moveToFront(id, true)) {
            Note moved = model->note();
            moved.dbIndex = *dbIndex;
            moved.lastModified = m_clock.now();
            model->setNote(moved);
        }
        notify(Change::noteViewModels);
        pill(QStringLiteral("Promoted note to front"), MessagePillTypes::success());
        return;
    }

    const auto model = m_noteViewModels[std::size_t(index)];
    // The model carries the new place too, or the next save would put the old one back.
    if (const auto dbIndex = m_store.moveToFront(id, true)) {
        Note moved = model->note();
        moved.dbIndex = *dbIndex;
        moved.lastModified = m_clock.now();
        model->setNote(moved);
    }
    pill(QStringLiteral("Promoted note to front"), MessagePillTypes::success());
    const auto oldNewest = m_noteViewModels.back();
    if (oldNewest->note().content.isEmpty())
        removeNote(oldNewest, std::nullopt);
    m_noteViewModels.erase(m_noteViewModels.begin() + index);
    m_noteViewModels.push_back(model);
    m_currentIndex = -1;
    setCurrentIndex(int(m_noteViewModels.size()) - 1);
    notify(Change::noteViewModels);
}

// ---- jumping anywhere -------------------------------------------------------------------------

void CoreDataNotesManager::loadGapTo(const Note &target)
{
    // The loaded window stays one unbroken, sorted stretch of the stack that reaches
    // the newest note, so the gap between it and the target is loaded with it.
    std::vector<Note> gap;
    if (m_noteViewModels.empty() || target.dbIndex < m_noteViewModels.front()->note().dbIndex) {
        const qint64 upper = m_noteViewModels.empty() ? target.dbIndex + 1 : m_noteViewModels.front()->note().dbIndex;
        gap = m_store.fetchBetween(target.dbIndex, upper);
        NoteViewModelList models;
        for (const Note &note : gap) {
            if (indexOf(note.id) < 0)
                models.push_back(std::make_shared<NoteViewModel>(note));
        }
        m_noteViewModels.insert(m_noteViewModels.begin(), models.begin(), models.end());
        m_previouslyViewedIndex += int(models.size());
        m_currentIndex += int(models.size());
    } else if (target.dbIndex > m_noteViewModels.back()->note().dbIndex) {
        gap = m_store.fetchBetween(m_noteViewModels.back()->note().dbIndex + 1, target.dbIndex + 1);
        for (const Note &note : gap) {
            if (indexOf(note.id) < 0)
                m_noteViewModels.push_back(std::make_shared<NoteViewModel>(note));
        }
    }
    if (indexOf(target.id) < 0) {
        // A note placed among loaded ones (sync slotted it in between) goes to its place.
        const auto at = std::upper_bound(m_noteViewModels.begin(), m_noteViewModels.end(), target.dbIndex,
                                         [](qint64 dbIndex, const auto &model) { return dbIndex < model->note().dbIndex; });
        const int position = int(at - m_noteViewModels.begin());
        m_noteViewModels.insert(at, std::make_shared<NoteViewModel>(target));
        if (position <= m_previouslyViewedIndex)
            ++m_previouslyViewedIndex;
        if (position <= m_currentIndex)
            ++m_currentIndex;
    }
}

void CoreDataNotesManager::jumpToNote(const QUuid &id)
{
    if (navigationBlocked())
        return;
    saveCurrentNote(false);
    const int index = indexOf(id);
    if (index >= 0) {
        if (index == m_currentIndex) {
            pill(QStringLiteral("Already on this note"), MessagePillTypes::warning());
            return;
        }
        setCurrentIndex(index);
        pill(QStringLiteral("Navigated to note"), MessagePillTypes::success());
        return;
    }
    // A search hit in a slotted note opens its slot.
    for (std::size_t slot = 0; slot < m_slottedNoteViewModels.size(); ++slot) {
        if (m_slottedNoteViewModels[slot]->id() != id)
            continue;
        if (int(slot) == m_slottedIndex) {
            pill(QStringLiteral("Already on this note"), MessagePillTypes::warning());
            return;
        }
        saveCurrentNote(true);
        setSlottedIndex(int(slot));
        m_preferences.setLastActiveSlottedNote(int(slot));
        pill(QStringLiteral("Navigated to note"), MessagePillTypes::success());
        return;
    }

    const auto note = m_store.fetchNote(id);
    if (!note || note->softDeleted || note->isSlotted) {
        pill(QStringLiteral("Note not found"), MessagePillTypes::warning());
        return;
    }
    // The open note keeps its number in step with the loaded gap, so this is a real move.
    loadGapTo(*note);
    notify(Change::noteViewModels);
    setCurrentIndex(indexOf(id));
    pill(QStringLiteral("Navigated to note"), MessagePillTypes::success());
}

// ---- clean-up ---------------------------------------------------------------------------------

void CoreDataNotesManager::cleanUpDeletedArray()
{
    if (m_deletedNotes.isEmpty())
        return;
    auto open = currentNote();
    if (open && isDeleted(open->id()))
        open = nullptr;
    if (!open) {
        qCDebug(lcNotes) << "No open note to keep while cleaning deleted notes";
        return;
    }
    std::erase_if(m_noteViewModels, [this](const auto &model) { return isDeleted(model->id()); });
    m_deletedNotes.clear();
    const int index = indexOf(open->id());
    if (index < 0) {
        qCWarning(lcNotes).noquote() << QStringLiteral("The current note with ID %1 was not found in the remaining notes.")
                                            .arg(idText(open->id()));
    } else {
        m_currentIndex = -1;
        setCurrentIndex(index);
        m_previouslyViewedIndex = index;
    }
    notify(Change::noteViewModels);
}

void CoreDataNotesManager::trimLoadedNotes()
{
    if (int(m_noteViewModels.size()) < kPageSize + 1 || m_currentIndex < kTrimKeepBelow + 1)
        return;
    const int dropped = m_currentIndex - kTrimKeepBelow;
    const std::optional<QUuid> openId = m_currentNoteId;
    m_noteViewModels.erase(m_noteViewModels.begin(), m_noteViewModels.begin() + dropped);
    int index = openId ? indexOf(*openId) : -1;
    if (index < 0) {
        qCWarning(lcNotes) << "Current note not found after trim! Going to latest.";
        index = int(m_noteViewModels.size()) - 1;
    }
    m_currentIndex = -1;
    setCurrentIndex(index);
    m_previouslyViewedIndex -= dropped;
    if (m_previouslyViewedIndex < 0)
        m_previouslyViewedIndex = m_currentIndex;
    notify(Change::noteViewModels);
}

// ---- outside changes and search -----------------------------------------------------------------

void CoreDataNotesManager::reloadAfterRemoteChanges(const QSet<QUuid> &changedUUIDs)
{
    // Changes that arrive while the debouncer waits are reported together.
    m_pendingChangedUUIDs.unite(changedUUIDs);
    m_remoteChangeDebouncer.call([this] {
        const QSet<QUuid> changed = std::exchange(m_pendingChangedUUIDs, {});
        initializeNotes(true);
        NotesReloadedNotification::post(m_bus, changed);
    });
}

std::vector<Note> CoreDataNotesManager::searchNotes(const QString &query)
{
    const QString cleaned = SearchQuery::clean(query);
    if (cleaned.isEmpty())
        return m_store.fetchAll(true);
    return SearchResults(m_store, TextFolding::fold(cleaned)).notes();
}

void CoreDataNotesManager::updateSearchResults(const QString &query)
{
    m_searchSlices.cancel();
    m_searchResults = SearchResults(m_store, TextFolding::fold(SearchQuery::clean(query)));
    // The first slice stops at a screenful, so a keystroke never waits for a short
    // query's whole list.
    m_searchResults.fetchMore(kSearchScreenful, QDeadlineTimer(kSearchSlice));
    m_searchResults.load(0, kSearchScreenful);
    notify(Change::searchResults);
    if (!m_searchResults.isComplete())
        m_searchSlices.call([this] { searchFurther(); });
}

void CoreDataNotesManager::searchFurther()
{
    if (m_searchResults.fetchMore(SearchResults::kUnlimited, QDeadlineTimer(kSearchSlice)) > 0 ||
        m_searchResults.isComplete())
        notify(Change::searchResults);
    if (!m_searchResults.isComplete())
        m_searchSlices.call([this] { searchFurther(); });
}

} // namespace scrivlet
