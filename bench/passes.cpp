// What the passes of a note's kind cost on a long note: a letter typed into a checklist,
// a digit typed into a sum, and a full restyle of a note written in markdown. Each runs
// through the editor session, once on the in-memory text of the command line and once
// on the desktop editor's document. The budget of each is one frame at 120 Hz, 8 ms.

#include "editor/EditorPasses.h"
#include "editor/UndoManagement.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/qt/DocumentTextStorage.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QApplication>
#include <QTest>
#include <QUuid>
#include <benchmark/benchmark.h>

#include <memory>

namespace scrivlet {
namespace {

constexpr int kLines = 2000;

QString listNote()
{
    QString text = QStringLiteral("list");
    for (int i = 1; i < kLines; ++i)
        text += u'\n' % QStringLiteral("Pick up item %1 from the shop on the corner").arg(i);
    return text;
}

QString sumNote()
{
    QString text = QStringLiteral("sum");
    for (int i = 1; i < kLines; ++i)
        text += u'\n' % QStringLiteral("Lunch with team %1 cost 12.50 and 3 coffees").arg(i);
    return text;
}

QString markdownNote()
{
    QString text = QStringLiteral("Project journal");
    for (int i = 1; i < kLines; ++i) {
        switch (i % 8) {
        case 0:
            text += QStringLiteral("\n# Week %1").arg(i);
            break;
        case 1:
            text += QStringLiteral("\n**Met** the *design* team about `build %1`").arg(i);
            break;
        case 2:
            text += QStringLiteral("\n  // remember to follow up on %1").arg(i);
            break;
        case 3:
            text += QStringLiteral("\n```");
            break;
        case 4:
            text += QStringLiteral("\nlet total = %1 * rate;").arg(i);
            break;
        case 5:
            text += QStringLiteral("\n```");
            break;
        case 6:
            text += QStringLiteral("\n~~cancelled~~ moved to __Friday__ and ***urgent***");
            break;
        default:
            text += QStringLiteral("\nPlain words about the day, nothing styled here");
            break;
        }
    }
    return text;
}

struct Preferences {
    MemorySettingsStore store;
    NotificationBus bus;
    ManualClock clock;
    KeywordPreferences keywordPreferences{store, &bus};
    KeywordDefinitionsContainer keywords{keywordPreferences};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    // The app's editors keep an undo record with every keystroke; so do these.
    UndoManagement undoManagement{clock};
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock, nullptr, nullptr, &undoManagement};
};

// A note opened as the command line opens one: in memory, with the editor's passes.
struct InMemoryEditor : Preferences {
    AttributedText storage;
    NoteViewModel noteViewModel;
    NoteEditorSession session;
    EditorPasses editorPasses;

    explicit InMemoryEditor(const QString &content)
        : noteViewModel(noteWith(content)), session(storage, noteViewModel, context, [](const Note &) {}),
          editorPasses(session, context)
    {
        session.open();
        storage.setSelectedRange({storage.length() / 2, 0});
    }

    static Note noteWith(const QString &content)
    {
        Note note;
        note.id = QUuid::createUuid();
        note.content = content;
        return note;
    }

    void type(const QString &text)
    {
        session.willChangeText(storage.selectedRange(), text, UserActionType::keydown);
        storage.type(text);
    }

    // Takes the keystroke back unseen by the engine, so every iteration types into the
    // same note.
    void takeBack(const QString &text)
    {
        const qsizetype at = storage.selectedRange().location - text.size();
        storage.setDelegate(nullptr);
        storage.replaceCharacters({at, text.size()}, {}, storage.typingAttributes());
        storage.setSelectedRange({at, 0});
        storage.setDelegate(&session);
        noteViewModel.mutableNote().content = storage.string();
    }
};

void typeInMemory(benchmark::State &state, const QString &content, const QString &key)
{
    InMemoryEditor editor(content);
    for (auto _ : state) {
        editor.type(key);
        state.PauseTiming();
        editor.takeBack(key);
        state.ResumeTiming();
    }
    benchmark::DoNotOptimize(editor.storage.length());
}

void BM_ListNoteKeystroke(benchmark::State &state)
{
    typeInMemory(state, listNote(), QStringLiteral("a"));
}
BENCHMARK(BM_ListNoteKeystroke)->Unit(benchmark::kMillisecond);

void BM_SumNoteKeystroke(benchmark::State &state)
{
    typeInMemory(state, sumNote(), QStringLiteral("7"));
}
BENCHMARK(BM_SumNoteKeystroke)->Unit(benchmark::kMillisecond);

void BM_MarkdownNoteRestyle(benchmark::State &state)
{
    InMemoryEditor editor(markdownNote());
    for (auto _ : state)
        editor.session.reStyleAndProcessNote();
    benchmark::DoNotOptimize(editor.storage.length());
}
BENCHMARK(BM_MarkdownNoteRestyle)->Unit(benchmark::kMillisecond);

// The same note in the desktop editor, typed into with real key events.
struct DesktopEditor : Preferences {
    std::unique_ptr<NoteEditorView> view;
    std::unique_ptr<EditorPasses> editorPasses;

    explicit DesktopEditor(const QString &content)
    {
        view = std::make_unique<NoteEditorView>(
            context, std::make_shared<NoteViewModel>(InMemoryEditor::noteWith(content)), [](const Note &) {});
        editorPasses = std::make_unique<EditorPasses>(view->session(), context);
        view->resize(500, 700);
        view->show();
        QCoreApplication::processEvents();
        view->session().reStyleAndProcessNote();
        view->textEdit().storage().setSelectedRange({view->textEdit().storage().length() / 2, 0});
    }
};

void typeOnDesktop(benchmark::State &state, const QString &content, Qt::Key key)
{
    DesktopEditor editor(content);
    NoteTextEdit &edit = editor.view->textEdit();
    for (auto _ : state) {
        QTest::keyClick(&edit, key);
        state.PauseTiming();
        TextStorageDelegate *session = edit.storage().delegate();
        edit.storage().setDelegate(nullptr);
        QTest::keyClick(&edit, Qt::Key_Backspace);
        edit.storage().setDelegate(session);
        editor.view->noteViewModel()->mutableNote().content = edit.storage().string();
        state.ResumeTiming();
    }
    benchmark::DoNotOptimize(edit.storage().length());
}

void BM_DesktopListNoteKeystroke(benchmark::State &state)
{
    typeOnDesktop(state, listNote(), Qt::Key_A);
}
BENCHMARK(BM_DesktopListNoteKeystroke)->Unit(benchmark::kMillisecond);

void BM_DesktopSumNoteKeystroke(benchmark::State &state)
{
    typeOnDesktop(state, sumNote(), Qt::Key_7);
}
BENCHMARK(BM_DesktopSumNoteKeystroke)->Unit(benchmark::kMillisecond);

void BM_DesktopMarkdownNoteRestyle(benchmark::State &state)
{
    DesktopEditor editor(markdownNote());
    for (auto _ : state)
        editor.view->session().reStyleAndProcessNote();
    benchmark::DoNotOptimize(editor.view->textEdit().storage().length());
}
BENCHMARK(BM_DesktopMarkdownNoteRestyle)->Unit(benchmark::kMillisecond);

// A restyle that finds the editor holding other text, as when a note is opened into it:
// every line is new to the document and is laid in and styled.
void BM_DesktopMarkdownNoteNewText(benchmark::State &state)
{
    const QString notes[] = {markdownNote(), markdownNote().replace(QStringLiteral("team"), QStringLiteral("crew"))};
    DesktopEditor editor(notes[0]);
    int turn = 0;
    for (auto _ : state) {
        state.PauseTiming();
        editor.view->noteViewModel()->mutableNote().content = notes[++turn % 2];
        state.ResumeTiming();
        editor.view->session().reStyleAndProcessNote();
    }
    benchmark::DoNotOptimize(editor.view->textEdit().storage().length());
}
BENCHMARK(BM_DesktopMarkdownNoteNewText)->Unit(benchmark::kMillisecond);

// A note walked to: its editor made, shown, and the note laid in and styled.
void BM_DesktopMarkdownNoteOpen(benchmark::State &state)
{
    const QString note = markdownNote();
    for (auto _ : state) {
        DesktopEditor editor(note);
        benchmark::DoNotOptimize(editor.view->textEdit().storage().length());
        state.PauseTiming();
        editor.view.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_DesktopMarkdownNoteOpen)->Unit(benchmark::kMillisecond);

// The same restyle with the markdown styling left out: what the editor's document costs
// on its own to take the note anew and lay it out, against which the styling is measured.
void BM_DesktopMarkdownNoteRestyleUnstyled(benchmark::State &state)
{
    DesktopEditor editor(markdownNote());
    editor.view->session().passes().applyMarkdown = nullptr;
    for (auto _ : state)
        editor.view->session().reStyleAndProcessNote();
    benchmark::DoNotOptimize(editor.view->textEdit().storage().length());
}
BENCHMARK(BM_DesktopMarkdownNoteRestyleUnstyled)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace scrivlet

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
