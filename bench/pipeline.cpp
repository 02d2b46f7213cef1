// What one keystroke costs the text-change pipeline on a long note. The budget for a
// keystroke below the first line is 1 ms.

#include "keywords/EditorContext.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/TextChangePipeline.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"

#include <benchmark/benchmark.h>

namespace scrivlet {
namespace {

constexpr int kLines = 10000;

QString longNote(const QString &firstLine)
{
    QString text = firstLine;
    text.reserve(kLines * 40);
    for (int i = 1; i < kLines; ++i)
        text += u'\n' % QStringLiteral("Line %1 with some words and %2 apples").arg(i).arg(i % 97);
    return text;
}

// One editor on a long note, as the app holds it.
struct LongNoteEditor {
    MemorySettingsStore store;
    NotificationBus bus;
    KeywordPreferences keywordPreferences{store, &bus};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    ManualClock clock;
    KeywordDefinitionsContainer keywords{keywordPreferences};
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock};
    AttributedText storage;
    NoteViewModel noteViewModel{Note{}};
    EditRecord edit;
    TextChangePipeline pipeline{context, edit, QStringLiteral("bench")};
    std::optional<KeywordID> activeKeyword;
    bool isList = false;
    NotificationBus::Subscription hints = bus.subscribe(QStringLiteral("updateHintText"), [](const QVariantMap &) {});

    explicit LongNoteEditor(const QString &firstLine)
    {
        storage.setText(longNote(firstLine), pipeline.defaultAttributes().plain());
        pipeline.processTextChange(&storage, noteViewModel, activeKeyword, isList, true);
    }

    // Types `text` in the middle of the note as a keystroke, outside the timing.
    void typeInMiddle(benchmark::State &state, const QString &text)
    {
        state.PauseTiming();
        const qsizetype at = storage.length() / 2;
        edit.lastModifiedRange = {at, 0};
        edit.preModifiedContent = storage.string();
        edit.lastModifiedContent = text;
        edit.lastModificationAction = UserActionType::keydown;
        storage.replaceCharacters({at, 0}, text, storage.typingAttributes());
        storage.setSelectedRange({at + text.size(), 0});
        state.ResumeTiming();
    }

    // Takes the keystroke back outside the timing, so every iteration types into the
    // same note of 10,000 short lines.
    void undoTyping(benchmark::State &state, const QString &text)
    {
        state.PauseTiming();
        const qsizetype at = storage.selectedRange().location - text.size();
        storage.replaceCharacters({at, text.size()}, {}, storage.typingAttributes());
        storage.setSelectedRange({at, 0});
        state.ResumeTiming();
    }

    void process(bool forceFull = false)
    {
        pipeline.processTextChange(&storage, noteViewModel, activeKeyword, isList, forceFull);
    }
};

// The common case: a letter typed in a plain note restyles its own line only.
void BM_PlainNoteKeystroke(benchmark::State &state)
{
    LongNoteEditor editor(QStringLiteral("Groceries and other notes"));
    for (auto _ : state) {
        editor.typeInMiddle(state, QStringLiteral("x"));
        editor.process();
        editor.undoTyping(state, QStringLiteral("x"));
    }
}
BENCHMARK(BM_PlainNoteKeystroke)->Unit(benchmark::kMicrosecond);

// A digit typed into a sum note: still one line of styling; the totals pass adds its own
// cost once it is plugged in.
void BM_SumNoteKeystroke(benchmark::State &state)
{
    LongNoteEditor editor(QStringLiteral("sum"));
    for (auto _ : state) {
        editor.typeInMiddle(state, QStringLiteral("7"));
        editor.process();
        editor.undoTyping(state, QStringLiteral("7"));
    }
}
BENCHMARK(BM_SumNoteKeystroke)->Unit(benchmark::kMicrosecond);

// A line break in a sum note restyles the whole note.
void BM_SumNoteLineBreak(benchmark::State &state)
{
    LongNoteEditor editor(QStringLiteral("sum"));
    for (auto _ : state) {
        editor.typeInMiddle(state, QStringLiteral("\n"));
        editor.process();
        editor.undoTyping(state, QStringLiteral("\n"));
    }
}
BENCHMARK(BM_SumNoteLineBreak)->Unit(benchmark::kMicrosecond);

// A full re-process, as after a change of font or theme.
void BM_SumNoteFullRun(benchmark::State &state)
{
    LongNoteEditor editor(QStringLiteral("sum"));
    for (auto _ : state)
        editor.process(true);
}
BENCHMARK(BM_SumNoteFullRun)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace scrivlet

BENCHMARK_MAIN();
