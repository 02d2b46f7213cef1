// What a keystroke costs in a long math note: 1,000 lines, of which 100 define variables
// and 900 calculate with them. Budgets: 8 ms for a character typed in a calculated line
// (the editor's own path: the edit is recorded, the text changes, the pipeline runs),
// 40 ms for a full pass over the note (as when it is opened or restyled). The same
// keystroke is also timed in the desktop editor, key event and document included.

#include "calculation/CurrencyRates.h"
#include "calculation/NumberLocale.h"
#include "calculation/UnitConverter.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/qt/DocumentTextStorage.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QApplication>
#include <QTest>
#include <benchmark/benchmark.h>

namespace scrivlet {
namespace {

constexpr int kVariables = 100;
constexpr int kCalculatedLines = 900;

// Names of one, two and three words, as people write them.
QString variableName(int i)
{
    static const QStringList words{QStringLiteral("rent"),   QStringLiteral("food"),  QStringLiteral("travel"),
                                   QStringLiteral("tax"),    QStringLiteral("hours"), QStringLiteral("rate"),
                                   QStringLiteral("guests"), QStringLiteral("fuel"),  QStringLiteral("fee")};
    const QString word = words.at(i % words.size());
    switch (i % 3) {
    case 0:
        return word % QString::number(i);
    case 1:
        return word % QStringLiteral(" item") % QString::number(i);
    default:
        return QStringLiteral("cost of ") % word % u' ' % QString::number(i);
    }
}

QString mathNote()
{
    QString text = QStringLiteral("math");
    for (int i = 0; i < kVariables; ++i) {
        // Some values are calculations over the variables above them.
        const QString value =
            i > 3 && i % 4 == 0
                ? QString(variableName(i - 1) % QStringLiteral(" * 1.5 + ") % variableName(i - 3))
                : QString(QString::number(12.5 + i * 3.25) % (i % 5 == 0 ? QStringLiteral("%") : QString()));
        text += u'\n' % variableName(i) % QStringLiteral(": ") % (i % 7 == 0 ? QStringLiteral("$") : QString()) % value;
    }
    for (int i = 0; i < kCalculatedLines; ++i) {
        const int a = (i * 37) % kVariables;
        const int b = (i * 53 + 11) % kVariables;
        text += u'\n' % variableName(a) % QStringLiteral(" * ") % QString::number(i % 12 + 1) % QStringLiteral(" + ") %
                variableName(b) % QStringLiteral(" / 4 - 10% =");
    }
    return text;
}

// One editor on the note, as the app holds it, with unit and currency conversion.
struct MathNoteEditor {
    MemorySettingsStore store;
    NotificationBus bus;
    ManualClock clock;
    KeywordPreferences keywordPreferences{store, &bus};
    KeywordDefinitionsContainer keywords{keywordPreferences};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    MathPreferences mathPreferences{store};
    CurrencyRates rates{store, clock, bus};
    UnitConverter converter{store, rates};
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock, &mathPreferences, &converter};
    AttributedText storage;
    NoteViewModel noteViewModel{Note{}};
    std::unique_ptr<NoteEditorSession> session;

    explicit MathNoteEditor(bool scan)
    {
        NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("en_US")));
        rates.useRates({{QStringLiteral("USD"), 1.0}, {QStringLiteral("CAD"), 1.36}, {QStringLiteral("EUR"), 0.92}});
        noteViewModel.mutableNote().content = mathNote();
        session = std::make_unique<NoteEditorSession>(storage, noteViewModel, context, nullptr);
        session->processMath().mathManager().setScanEnabled(scan);
        session->open();
    }

    // Where a digit goes: behind the factor of a calculated line in the middle of the
    // note ("* 6" becomes "* 67").
    qsizetype typingPosition() const
    {
        const QString text = storage.string();
        qsizetype line = 0;
        for (int i = 0; i < kVariables + kCalculatedLines / 2; ++i)
            line = text.indexOf(u'\n', line) + 1;
        return text.indexOf(QStringLiteral(" + "), line);
    }

    void type(qsizetype at, const QString &text)
    {
        storage.setSelectedRange({at, 0});
        session->willChangeText({at, 0}, text, UserActionType::keydown);
        storage.type(text);
    }

    // Takes a typed character away behind the editor's back, so that the next keystroke
    // finds the note as the one before it did.
    void takeBackQuietly(qsizetype at)
    {
        TextStorageDelegate *delegate = storage.delegate();
        storage.setDelegate(nullptr);
        storage.replaceCharacters({at, 1}, {}, storage.attributesAt(at));
        storage.setDelegate(delegate);
        noteViewModel.mutableNote().content = storage.string();
    }

    void backspace(qsizetype at)
    {
        storage.setSelectedRange({at - 1, 1});
        session->willChangeText({at - 1, 1}, {}, UserActionType::delete_);
        storage.type({});
    }
};

// A digit typed into a calculated line; it is taken away again outside the timing.
void BM_TypeInCalculatedLine(benchmark::State &state)
{
    MathNoteEditor editor(state.range(0) != 0);
    const qsizetype at = editor.typingPosition();
    const QString before = editor.storage.string();
    for (auto _ : state) {
        editor.type(at, QStringLiteral("7"));
        state.PauseTiming();
        // The keystroke must have changed the line's result, not just its text.
        if (QStringView(editor.storage.string()).mid(at + 1, 60) == QStringView(before).mid(at, 60)) {
            state.SkipWithError("the keystroke changed no result");
            break;
        }
        editor.takeBackQuietly(at);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_TypeInCalculatedLine)->ArgName("scan")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

// A backward delete: not a keystroke that stays within its line, so the whole note is
// worked out from the top.
void BM_BackspaceInCalculatedLine(benchmark::State &state)
{
    MathNoteEditor editor(true);
    const qsizetype at = editor.typingPosition();
    for (auto _ : state) {
        state.PauseTiming();
        editor.type(at, QStringLiteral("7"));
        state.ResumeTiming();
        editor.backspace(at + 1);
    }
}
BENCHMARK(BM_BackspaceInCalculatedLine)->Unit(benchmark::kMillisecond);

// The full pass: the note restyled and recalculated as a whole, as after a change of
// theme or of the math settings.
void BM_FullPass(benchmark::State &state)
{
    MathNoteEditor editor(state.range(0) != 0);
    for (auto _ : state)
        editor.session->reStyleAndProcessNote();
}
BENCHMARK(BM_FullPass)->ArgName("scan")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

// The digit typed as a key press into the desktop editor, on the editor's document.
void BM_DesktopEditorTypeInCalculatedLine(benchmark::State &state)
{
    MathNoteEditor shared(true);
    Note note;
    note.id = QUuid::createUuid();
    note.content = shared.storage.string();
    NoteEditorView view(shared.context, std::make_shared<NoteViewModel>(note), [](const Note &) {});
    view.resize(400, 600);
    view.show();
    QCoreApplication::processEvents();
    NoteTextEdit &edit = view.textEdit();
    const qsizetype at = shared.typingPosition();
    edit.storage().setSelectedRange({at, 0});
    for (auto _ : state) {
        QTest::keyClick(&edit, Qt::Key_7);
        state.PauseTiming();
        if (edit.storage().string().at(at) != u'7') {
            state.SkipWithError("the key did not reach the note");
            break;
        }
        // The take-back bypasses the engine, so that a profile shows the keystroke alone.
        TextStorageDelegate *session = edit.storage().delegate();
        edit.storage().setDelegate(nullptr);
        QTest::keyClick(&edit, Qt::Key_Backspace);
        edit.storage().setDelegate(session);
        // The note's content as the editor last saw it, or the next key would find no
        // change to process.
        view.noteViewModel()->mutableNote().content = edit.storage().string();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_DesktopEditorTypeInCalculatedLine)->Unit(benchmark::kMillisecond);

// The full pass on the desktop editor's document, every mark laid anew.
void BM_DesktopEditorFullPass(benchmark::State &state)
{
    MathNoteEditor shared(true);
    Note note;
    note.id = QUuid::createUuid();
    note.content = shared.storage.string();
    NoteEditorView view(shared.context, std::make_shared<NoteViewModel>(note), [](const Note &) {});
    view.resize(400, 600);
    view.show();
    QCoreApplication::processEvents();
    for (auto _ : state)
        view.session().reStyleAndProcessNote();
}
BENCHMARK(BM_DesktopEditorFullPass)->Unit(benchmark::kMillisecond);

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
