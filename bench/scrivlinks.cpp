// What short links cost on the largest notes: opening a note with 10,000 URLs (every
// one shortened, numbered and styled), the update that runs once typing pauses in
// such a note, a URL of 50,000 characters, and expanding all links for a copy. The
// update after a pause and the copy should stay within a frame at 120 Hz (8 ms) for
// ordinary notes; the 10,000-link cases must stay bounded, far from quadratic.

#include "editor/ScrivlinkExpansion.h"
#include "editor/ScrivlinkPass.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QApplication>
#include <QUuid>
#include <benchmark/benchmark.h>

#include <memory>

namespace scrivlet {
namespace {

QString noteWithUrls(int count)
{
    QString text = QStringLiteral("reading list");
    for (int i = 0; i < count; ++i)
        text += QStringLiteral("\nhttps://site%1.example.com/articles/item-%2-of-the-list").arg(i % 50).arg(i % 700);
    return text + u'\n';
}

QString noteWithHugeUrl()
{
    return QStringLiteral("note\nhttps://example.com/") + QString(50000, u'x') + QStringLiteral("-end done");
}

struct Preferences {
    MemorySettingsStore store;
    NotificationBus bus;
    ManualClock clock;
    KeywordPreferences keywordPreferences{store, &bus};
    KeywordDefinitionsContainer keywords{keywordPreferences};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock};
};

Note noteWith(const QString &content)
{
    Note note;
    note.id = QUuid::createUuid();
    note.content = content;
    return note;
}

struct InMemoryEditor : Preferences {
    AttributedText storage;
    NoteViewModel noteViewModel;
    NoteEditorSession session;
    ScrivlinkPass links;

    explicit InMemoryEditor(const QString &content)
        : noteViewModel(noteWith(content)), session(storage, noteViewModel, context, [](const Note &) {}),
          links(session, context)
    {
        session.open();
    }
};

void BM_OpenNoteWith10000Urls(benchmark::State &state)
{
    const QString content = noteWithUrls(10000);
    for (auto _ : state) {
        InMemoryEditor editor(content);
        benchmark::DoNotOptimize(editor.storage.length());
        if (editor.noteViewModel.note().scrivlinkManager->scrivlinks.size() != 10000)
            state.SkipWithError("not every URL was shortened");
    }
}
BENCHMARK(BM_OpenNoteWith10000Urls)->Unit(benchmark::kMillisecond);

// A letter typed into a note with 10,000 short links, and the update that follows.
void BM_UpdateAfterPauseIn10000LinkNote(benchmark::State &state)
{
    InMemoryEditor editor(noteWithUrls(10000));
    for (auto _ : state) {
        state.PauseTiming();
        editor.storage.setSelectedRange({editor.storage.length(), 0});
        editor.session.willChangeText(editor.storage.selectedRange(), QStringLiteral("a"), UserActionType::keydown);
        editor.storage.type(QStringLiteral("a"));
        state.ResumeTiming();
        editor.links.flushPendingUpdate();
    }
    benchmark::DoNotOptimize(editor.storage.length());
}
BENCHMARK(BM_UpdateAfterPauseIn10000LinkNote)->Unit(benchmark::kMillisecond);

void BM_KeystrokeInNoteWith20Links(benchmark::State &state)
{
    InMemoryEditor editor(noteWithUrls(20));
    for (auto _ : state) {
        editor.storage.setSelectedRange({editor.storage.length(), 0});
        editor.session.willChangeText(editor.storage.selectedRange(), QStringLiteral("a"), UserActionType::keydown);
        editor.storage.type(QStringLiteral("a"));
    }
    benchmark::DoNotOptimize(editor.storage.length());
}
BENCHMARK(BM_KeystrokeInNoteWith20Links)->Unit(benchmark::kMillisecond);

void BM_OpenNoteWith50000CharacterUrl(benchmark::State &state)
{
    const QString content = noteWithHugeUrl();
    for (auto _ : state) {
        InMemoryEditor editor(content);
        benchmark::DoNotOptimize(editor.storage.length());
    }
}
BENCHMARK(BM_OpenNoteWith50000CharacterUrl)->Unit(benchmark::kMillisecond);

void BM_ExpandAll10000Links(benchmark::State &state)
{
    InMemoryEditor editor(noteWithUrls(10000));
    const QString text = editor.storage.string();
    const auto &scrivlinks = editor.noteViewModel.note().scrivlinkManager->scrivlinks;
    for (auto _ : state)
        benchmark::DoNotOptimize(expandAllScrivlinks(text, scrivlinks));
}
BENCHMARK(BM_ExpandAll10000Links)->Unit(benchmark::kMillisecond);

// The same note opened in the desktop editor's document.
void BM_DesktopOpenNoteWith10000Urls(benchmark::State &state)
{
    const QString content = noteWithUrls(10000);
    for (auto _ : state) {
        Preferences preferences;
        NoteEditorView view(preferences.context, std::make_shared<NoteViewModel>(noteWith(QString())),
                            [](const Note &) {});
        view.noteViewModel()->mutableNote().content = content;
        view.session().reStyleAndProcessNote();
        if (view.noteViewModel()->note().scrivlinkManager->scrivlinks.size() != 10000)
            state.SkipWithError("not every URL was shortened");
    }
}
BENCHMARK(BM_DesktopOpenNoteWith10000Urls)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
} // namespace scrivlet

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
