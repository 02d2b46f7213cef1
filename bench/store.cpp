// The note store at the size of a long-used scratchpad: 100,000 notes, most of them
// short, some long. Budgets: opening the store and loading the stack 50 ms, one
// keystroke in the search bar 20 ms (common and rare words, one and two letters alike),
// saving one edited note 2 ms.

#include "notes/CoreDataManager.h"
#include "notes/CoreDataNotesManager.h"
#include "notes/CoreDataStack.h"
#include "notes/SearchResults.h"
#include "platform/ManualClock.h"
#include "platform/MemoryAlerts.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace scrivlet {
namespace {

constexpr int kNotes = 100000;

const char *const kWords[] = {
    "the", "meeting", "with", "project", "plan", "call", "tomorrow", "buy", "milk", "eggs", "bread", "idea",
    "for", "a", "new", "feature", "remember", "to", "send", "invoice", "client", "draft", "email", "about",
    "budget", "review", "notes", "from", "standup", "todo", "fix", "bug", "in", "login", "flow", "groceries",
    "book", "flight", "hotel", "recipe", "dinner", "garden", "weekend", "trip", "coffee", "café", "résumé",
    "naïve", "über", "quarterly", "report", "numbers", "sales", "team", "offsite", "agenda", "questions",
    "answers", "link", "https://example.com/page", "password", "reset", "doctor", "appointment", "pay",
    "rent", "electricity", "bill", "birthday", "gift", "mom", "dad", "kids", "school", "homework", "run",
    "5k", "training", "schedule", "monday", "tuesday", "friday", "deadline", "ship", "release", "notes:",
    "version", "2.1", "refactor", "database", "query", "index", "slow", "fast", "cache", "memory", "leak",
    "draft", "poem", "line", "song", "lyrics", "chord", "guitar", "practice", "read", "chapter", "summary",
    "quote", "thought", "random", "list", "of", "things", "and", "or", "but", "maybe", "later", "now",
};
constexpr int kWordCount = int(sizeof(kWords) / sizeof(kWords[0]));

// Lengths as a scratchpad collects them: mostly a line or two, a third a paragraph
// or a list, and a few long documents.
int noteLength(std::mt19937 &random)
{
    const int bucket = int(random() % 100);
    if (bucket < 60)
        return 20 + int(random() % 180);
    if (bucket < 90)
        return 200 + int(random() % 800);
    if (bucket < 99)
        return 1000 + int(random() % 3000);
    return 4000 + int(random() % 8000);
}

// A note's words follow the long tail of real writing: the common words above half
// the time, otherwise a vocabulary of 20,000 words where the n-th is n times rarer than
// the first.
class Vocabulary {
public:
    static constexpr int kSize = 20000;

    Vocabulary()
    {
        static const char *const kSyllables[] = {"ka", "lo", "mi", "ren", "sto", "va", "pel", "dor", "qui", "ne",
                                                 "tas", "bri", "mon", "zu", "fe", "gar", "hol", "ix", "jo", "wen"};
        std::mt19937 random(7);
        double total = 0;
        for (int rank = 1; rank <= kSize; ++rank) {
            QString word;
            const int syllables = 2 + int(random() % 3);
            for (int i = 0; i < syllables; ++i)
                word += QString::fromLatin1(kSyllables[random() % 20]);
            m_words.push_back(word);
            total += 1.0 / rank;
            m_cumulative.push_back(total);
        }
        // Real words a user looks for, at the ranks of fairly rare ones.
        m_words[119] = QStringLiteral("résumé");
        m_words[499] = QStringLiteral("invoice");
        m_words[1999] = QStringLiteral("tessellation");
    }

    QString pick(std::mt19937 &random) const
    {
        const double target = std::uniform_real_distribution<double>(0, m_cumulative.back())(random);
        const auto at = std::lower_bound(m_cumulative.begin(), m_cumulative.end(), target);
        return m_words[std::size_t(at - m_cumulative.begin())];
    }

private:
    std::vector<QString> m_words;
    std::vector<double> m_cumulative;
};

QString noteText(std::mt19937 &random, const Vocabulary &vocabulary)
{
    static const QString kFirstLines[] = {QStringLiteral("math\n"), QStringLiteral("list\n"),
                                          QStringLiteral("sum\n"), QStringLiteral("code\n")};
    const int length = noteLength(random);
    QString text;
    text.reserve(length + 16);
    if (random() % 5 == 0)
        text += kFirstLines[random() % 4];
    int column = 0;
    while (text.size() < length) {
        const QString word =
            random() % 2 == 0 ? QString::fromUtf8(kWords[random() % kWordCount]) : vocabulary.pick(random);
        text += word;
        column += int(word.size());
        if (column > 50 + int(random() % 40)) {
            text += QLatin1Char('\n');
            column = 0;
        } else {
            text += random() % 9 == 0 ? QStringLiteral(", ") : QStringLiteral(" ");
        }
        if (random() % 40 == 0)
            text += QString::number(random() % 1000) % QStringLiteral(" = ");
    }
    return text;
}

// The store is made once per run; every benchmark opens the same file. Making it takes
// half a minute, so SCRIVLET_BENCH_STORE may name a folder where it is kept between
// runs: an existing store there is used as it is.
QString storeDirectory()
{
    static QTemporaryDir temporary;
    static const QString kept = qEnvironmentVariable("SCRIVLET_BENCH_STORE");
    static const QString path = kept.isEmpty() ? temporary.path() : kept;
    static bool made = false;
    if (made)
        return path;
    made = true;
    if (!kept.isEmpty() && QFileInfo::exists(CoreDataStack::storePath(kept)))
        return path;
    auto opened = CoreDataStack::open(path);
    if (!opened.ok()) {
        std::fprintf(stderr, "%s\n", qPrintable(opened.error().message));
        std::abort();
    }
    auto stack = std::move(opened).value();
    Database &db = stack->database();
    std::mt19937 random(20260101);
    const Vocabulary vocabulary;
    const qint64 start = QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    db.exec(QStringLiteral("BEGIN"));
    Statement insert = db.prepare(QStringLiteral(
        "INSERT INTO notes (id, content, created, lastModified, dbIndex, isSlotted, softDeleted, deletedAt) "
        "VALUES (?1, ?2, ?3, ?3, ?4, 0, ?5, ?6)"));
    for (int i = 1; i <= kNotes; ++i) {
        const qint64 when = start + qint64(i) * 30 * 60 * 1000;
        const bool trashed = random() % 50 == 0; // about 2% sit in The Void
        insert.reset();
        insert.bind(1, QUuid::createUuid().toString(QUuid::WithoutBraces))
            .bind(2, noteText(random, vocabulary))
            .bind(3, when)
            .bind(4, qint64(i) * CoreDataManager::kIndexStep)
            .bind(5, trashed);
        if (trashed)
            insert.bind(6, when);
        else
            insert.bindNull(6);
        if (!insert.exec()) {
            std::fprintf(stderr, "insert failed: %s\n", qPrintable(insert.lastError()));
            std::abort();
        }
    }
    db.exec(QStringLiteral("COMMIT"));
    // The slots exist from the first start on.
    MemorySettingsStore settings;
    ManualClock clock;
    CoreDataManager manager(*stack, settings, clock);
    manager.ensureSlots();
    db.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    return path;
}

// What the app holds once it is up.
struct OpenStore {
    MemorySettingsStore settings;
    ManualClock clock;
    NotificationBus bus;
    MemoryAlerts alerts;
    std::unique_ptr<CoreDataStack> stack;
    std::unique_ptr<CoreDataManager> manager;
    std::unique_ptr<CoreDataNotesManager> notes;

    explicit OpenStore(const QString &path)
    {
        auto opened = CoreDataStack::open(path);
        if (!opened.ok())
            std::abort();
        stack = std::move(opened).value();
        manager = std::make_unique<CoreDataManager>(*stack, settings, clock);
        notes = std::make_unique<CoreDataNotesManager>(*manager, settings, bus, clock, alerts);
        notes->setUp();
    }
};

void BM_OpenStoreAndInitializeNotes(benchmark::State &state)
{
    const QString path = storeDirectory();
    for (auto _ : state) {
        OpenStore store(path);
        benchmark::DoNotOptimize(store.notes->noteViewModels().size());
    }
}
BENCHMARK(BM_OpenStoreAndInitializeNotes)->Unit(benchmark::kMillisecond);

// One keystroke in the search bar, up to results the view can show: every hit known
// (or, for a query too short for the index, the first screenful of hits) and the rows
// of the first screenful read. A short query's remaining slices stay pending on the
// manual clock, and the next keystroke cancels them, as typing does in the app.
void BM_SearchKeystroke(benchmark::State &state, const char *query)
{
    OpenStore store(storeDirectory());
    const QString text = QString::fromUtf8(query);
    store.notes->updateSearchResults(text); // the order of the stack is read once per session
    for (auto _ : state) {
        store.notes->updateSearchResults(text);
        benchmark::DoNotOptimize(store.notes->searchResults().at(0));
    }
    SearchResults &results = store.notes->searchResults();
    state.counters["shown"] = double(results.size());
    state.counters["complete"] = results.isComplete() ? 1 : 0;
    results.fetchAll();
    state.counters["results"] = double(results.size());
}
// Typical queries: a word of the long tail, a rarer one, an accented word typed
// without its accent, a phrase, a common word, a text that is in no note, and the
// one- and two-letter starts that the trigram index can't answer, common and absent.
BENCHMARK_CAPTURE(BM_SearchKeystroke, word, "invoice")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, rareWord, "tessellation")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, unaccented, "resume")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, phrase, "send invoice")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, commonWord, "meeting")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, nowhere, "zqx")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, oneLetter, "e")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, twoLetters, "qu")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, twoLettersNowhere, "zq")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchKeystroke, everything, "?")->Unit(benchmark::kMillisecond);

// A keystroke right after the editor saved a note: the order of the stack follows the
// write without being read again.
void BM_SearchKeystrokeAfterSave(benchmark::State &state)
{
    OpenStore store(storeDirectory());
    const QString text = QStringLiteral("meeting");
    store.notes->updateSearchResults(text);
    auto open = store.notes->currentNote();
    int edit = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Note note = open->note();
        note.content[note.content.size() - 1] = (++edit % 2 == 0) ? u'a' : u'b';
        open->setNote(note);
        store.notes->saveCurrentNote(false);
        state.ResumeTiming();
        store.notes->updateSearchResults(text);
        benchmark::DoNotOptimize(store.notes->searchResults().at(0));
    }
}
BENCHMARK(BM_SearchKeystrokeAfterSave)->Unit(benchmark::kMillisecond);

// The search view opening on the empty query, every live note: the first search of a
// session, which reads the order of the whole stack for the keystrokes after it. With
// a word in place of the empty query, the same first search.
void BM_OpenSearchView(benchmark::State &state, const char *query)
{
    OpenStore store(storeDirectory());
    for (auto _ : state) {
        CoreDataManager manager(*store.stack, store.settings, store.clock);
        SearchResults results(manager, QString::fromUtf8(query));
        results.load(0, CoreDataNotesManager::kSearchScreenful);
        benchmark::DoNotOptimize(results.at(0));
    }
}
BENCHMARK_CAPTURE(BM_OpenSearchView, emptyQuery, "")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenSearchView, commonWord, "meeting")->Unit(benchmark::kMillisecond);

// A short query looked for to the end of the stack, in the slices the main loop runs
// between keystrokes: how long until the list is whole.
void BM_SearchWholeList(benchmark::State &state, const char *query)
{
    OpenStore store(storeDirectory());
    const QString text = QString::fromUtf8(query);
    store.notes->updateSearchResults(text);
    for (auto _ : state) {
        store.notes->updateSearchResults(text);
        store.clock.advance(std::chrono::milliseconds(0));
        benchmark::DoNotOptimize(store.notes->searchResults().size());
    }
    state.counters["results"] = double(store.notes->searchResults().size());
    state.counters["complete"] = store.notes->searchResults().isComplete() ? 1 : 0;
}
BENCHMARK_CAPTURE(BM_SearchWholeList, oneLetter, "e")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SearchWholeList, twoLettersNowhere, "zq")->Unit(benchmark::kMillisecond);

// Every hit of a common word as a whole note, as the command line and the URL scheme
// ask for them.
void BM_SearchNotes(benchmark::State &state)
{
    OpenStore store(storeDirectory());
    std::size_t found = 0;
    for (auto _ : state) {
        found = store.notes->searchNotes(QStringLiteral("meeting")).size();
        benchmark::DoNotOptimize(found);
    }
    state.counters["results"] = double(found);
}
BENCHMARK(BM_SearchNotes)->Unit(benchmark::kMillisecond);

// The note open at start (the newest, a long one in this store), or a typical note
// of a few hundred characters.
void BM_SaveEditedNote(benchmark::State &state)
{
    OpenStore store(storeDirectory());
    const bool typical = state.range(0) == 1;
    if (typical) {
        const auto &loaded = store.notes->noteViewModels();
        for (std::size_t i = loaded.size(); i-- > 0;) {
            const qsizetype length = loaded[i]->note().content.size();
            if (length >= 300 && length <= 800) {
                store.notes->setCurrentIndex(int(i));
                break;
            }
        }
    }
    auto open = store.notes->currentNote();
    int edit = 0;
    for (auto _ : state) {
        // One keystroke's worth of change, as the editor's save timer hands it over.
        // The last character flips, so the note keeps its length however long this runs.
        Note note = open->note();
        note.content[note.content.size() - 1] = (++edit % 2 == 0) ? u'a' : u'b';
        open->setNote(note);
        store.notes->saveCurrentNote(false);
    }
    state.counters["noteLength"] = double(open->note().content.size());
}
BENCHMARK(BM_SaveEditedNote)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace scrivlet

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("scrivlet.*.debug=false\nscrivlet.*.info=false"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
