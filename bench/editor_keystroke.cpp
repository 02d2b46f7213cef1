// What one keystroke costs in the desktop editor on a long note: the key event, the
// document change, working out what was replaced, the pipeline on the editor's
// document, and the save scheduling. The budget is one frame at 120 Hz, 8 ms.

#include "editor/UndoManagement.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/NoteViewModel.h"
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
#include <benchmark/benchmark.h>

namespace scrivlet {
namespace {

constexpr int kLines = 10000;

struct EditorOnLongNote {
    MemorySettingsStore store;
    NotificationBus bus;
    ManualClock clock;
    KeywordPreferences keywordPreferences{store, &bus};
    KeywordDefinitionsContainer keywords{keywordPreferences};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    // The app's editors keep an undo record with every keystroke; so does this one.
    UndoManagement undoManagement{clock};
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock, nullptr, nullptr, &undoManagement};
    std::unique_ptr<NoteEditorView> view;

    explicit EditorOnLongNote(const QString &firstLine)
    {
        Note note;
        note.id = QUuid::createUuid();
        note.content = firstLine;
        for (int i = 1; i < kLines; ++i)
            note.content += u'\n' % QStringLiteral("Line %1 with some words and %2 apples").arg(i).arg(i % 97);
        view = std::make_unique<NoteEditorView>(context, std::make_shared<NoteViewModel>(note), [](const Note &) {});
        view->resize(400, 600);
        view->show();
        QCoreApplication::processEvents();
        view->textEdit().storage().setSelectedRange({view->textEdit().storage().length() / 2, 0});
    }
};

// Types one key per iteration and takes it back outside the timing, so the note stays
// as it was: a letter is typed and deleted, a deletion is undone by retyping.
void runKeystrokes(benchmark::State &state, const QString &firstLine, Qt::Key key)
{
    EditorOnLongNote editor(firstLine);
    NoteTextEdit &edit = editor.view->textEdit();
    const Qt::Key undo = key == Qt::Key_Backspace ? Qt::Key_A : Qt::Key_Backspace;
    for (auto _ : state) {
        QTest::keyClick(&edit, key);
        state.PauseTiming();
        // The take-back bypasses the engine, so a profile of this program shows the
        // timed keystroke alone.
        TextStorageDelegate *session = edit.storage().delegate();
        edit.storage().setDelegate(nullptr);
        QTest::keyClick(&edit, undo);
        edit.storage().setDelegate(session);
        // The note's content as the editor last saw it, or the next key could find no
        // change to process.
        editor.view->noteViewModel()->mutableNote().content = edit.storage().string();
        state.ResumeTiming();
    }
    benchmark::DoNotOptimize(edit.storage().length());
}

void BM_EditorTypeLetterPlainNote(benchmark::State &state)
{
    runKeystrokes(state, QStringLiteral("Groceries and plans"), Qt::Key_A);
}
BENCHMARK(BM_EditorTypeLetterPlainNote)->Unit(benchmark::kMicrosecond);

// A deletion restyles the whole note, whatever its kind.
void BM_EditorBackspacePlainNote(benchmark::State &state)
{
    runKeystrokes(state, QStringLiteral("Groceries and plans"), Qt::Key_Backspace);
}
BENCHMARK(BM_EditorBackspacePlainNote)->Unit(benchmark::kMicrosecond);

void BM_EditorTypeLetterSumNote(benchmark::State &state)
{
    runKeystrokes(state, QStringLiteral("sum"), Qt::Key_A);
}
BENCHMARK(BM_EditorTypeLetterSumNote)->Unit(benchmark::kMicrosecond);

void BM_EditorBackspaceSumNote(benchmark::State &state)
{
    runKeystrokes(state, QStringLiteral("sum"), Qt::Key_Backspace);
}
BENCHMARK(BM_EditorBackspaceSumNote)->Unit(benchmark::kMicrosecond);

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
