#include "platform/qt/DocumentTextStorage.h"
#include "views/NoteTextEdit.h"

#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

struct Listening : TextStorageDelegate {
    int calls = 0;
    void textStorageDidChange(TextStorage &) override { ++calls; }
};

TextAttributes role(const QString &name)
{
    TextAttributes a;
    a.foreground = name;
    return a;
}

} // namespace

TEST(NoteTextEdit, ReportsEachUserEditWithWhatItReplaced)
{
    NoteTextEdit editor;
    Listening listening;
    editor.storage().setDelegate(&listening);
    std::vector<NoteTextEdit::Edit> edits;
    editor.setEditHandler([&](const NoteTextEdit::Edit &e) { edits.push_back(e); });
    editor.loadText(QStringLiteral("aa\nline"));
    EXPECT_TRUE(edits.empty()) << "loading a note is no edit";

    editor.storage().setSelectedRange({1, 0});
    QTest::keyClicks(&editor, QStringLiteral("a"));
    ASSERT_EQ(edits.size(), 1u);
    EXPECT_EQ(edits[0].before, QStringLiteral("aa\nline"));
    EXPECT_EQ(edits[0].replaced, (TextRange{1, 0})); // not at 2, though "aaa" reads the same
    EXPECT_EQ(edits[0].inserted, QStringLiteral("a"));
    EXPECT_EQ(edits[0].action, UserActionType::keydown);

    editor.storage().setSelectedRange({7, 0});
    QTest::keyClick(&editor, Qt::Key_Backspace);
    ASSERT_EQ(edits.size(), 2u);
    EXPECT_EQ(edits[1].replaced, (TextRange{6, 1}));
    EXPECT_TRUE(edits[1].inserted.isEmpty());
    EXPECT_EQ(edits[1].action, UserActionType::delete_);

    QTest::keyClick(&editor, Qt::Key_Return);
    ASSERT_EQ(edits.size(), 3u);
    EXPECT_EQ(edits[2].inserted, QStringLiteral("\n"));
    EXPECT_EQ(editor.storage().string(), QStringLiteral("aaa\nli\ne"));

    // What the passes do with the delegate taken away, and changes of attributes
    // alone, are not the user's edits.
    editor.storage().setDelegate(nullptr);
    editor.storage().replaceCharacters({0, 0}, QStringLiteral("sum\n"), {});
    editor.storage().setDelegate(&listening);
    editor.storage().addAttributes({0, 3}, role(QStringLiteral("accent3Main")));
    EXPECT_EQ(edits.size(), 3u);

    QTest::keyClicks(&editor, QStringLiteral("x"));
    ASSERT_EQ(edits.size(), 4u);
    EXPECT_EQ(edits[3].before, QStringLiteral("sum\naaa\nli\ne"));
    EXPECT_TRUE(editor.storage().mirrorsDocument());
}

TEST(DocumentTextStorage, KeepsThePassesAttributesAndLineFeeds)
{
    NoteTextEdit editor;
    DocumentTextStorage &storage = editor.storage();
    editor.loadText(QStringLiteral("math\n1+1=2\n\nend"));
    EXPECT_EQ(storage.string(), QStringLiteral("math\n1+1=2\n\nend"));
    EXPECT_EQ(storage.length(), 15);

    TextAttributes keyword = role(QStringLiteral("accent1Main"));
    keyword.custom = CustomAttribute{QStringLiteral("keyword"), QStringLiteral("MATH")};
    storage.addAttributes({0, 4}, keyword);
    TextAttributes result;
    result.custom = CustomAttribute{QStringLiteral("math"), QStringLiteral("calculatedFieldHighlight")};
    storage.addAttributes({9, 1}, result);

    TextRange effective;
    const TextAttributes atStart = storage.attributesAt(2, &effective);
    ASSERT_TRUE(atStart.custom);
    EXPECT_EQ(atStart.custom->subtag, QStringLiteral("MATH"));
    EXPECT_EQ(effective, (TextRange{0, 4}));
    ASSERT_TRUE(storage.attributesAt(9).custom);
    EXPECT_EQ(storage.attributesAt(9).custom->tag, QStringLiteral("math"));
    EXPECT_FALSE(storage.attributesAt(8).custom);

    // Runs come back as laid, across the document's own paragraph breaks.
    std::vector<TextRange> customRuns;
    storage.enumerateRuns({0, storage.length()}, [&](const TextRange &r, const TextAttributes &a) {
        if (a.custom)
            customRuns.push_back(r);
    });
    EXPECT_EQ(customRuns, (std::vector<TextRange>{{0, 4}, {9, 1}}));

    storage.removeAttributes({0, storage.length()}, TextAttributes::Custom);
    EXPECT_FALSE(storage.attributesAt(2).custom);
    EXPECT_EQ(storage.attributesAt(2).foreground, QStringLiteral("accent1Main"));

    storage.replaceCharacters({10, 0}, QStringLiteral("00"), role(QStringLiteral("typeMain")));
    EXPECT_EQ(storage.string(), QStringLiteral("math\n1+1=200\n\nend"));
    EXPECT_EQ(storage.substring(storage.lineRange({11, 0})), QStringLiteral("1+1=200\n"));

    // Attributes over the whole text cover its line feeds too: one run.
    storage.setAttributes({0, storage.length()}, role(QStringLiteral("typeMain")));
    int runs = 0;
    storage.enumerateRuns({0, storage.length()}, [&](const TextRange &, const TextAttributes &) { ++runs; });
    EXPECT_EQ(runs, 1);

    storage.setSelectedRange({2, 3});
    EXPECT_EQ(storage.selectedRange(), (TextRange{2, 3}));
    storage.setSelectedRange({100, 0});
    EXPECT_EQ(storage.selectedRange(), (TextRange{storage.length(), 0}));
    EXPECT_TRUE(storage.mirrorsDocument());
}

TEST(DocumentTextStorage, ABatchTakingTheWholeTextAnewChangesOnlyWhatDiffers)
{
    NoteTextEdit editor;
    DocumentTextStorage &storage = editor.storage();
    TextAttributes plain = role(QStringLiteral("typeMain"));
    plain.paragraph = ParagraphSpec{};
    const TextAttributes heading = role(QStringLiteral("accent1Main"));

    // A restyle as the editor session does one: the text set anew, then styled.
    auto restyle = [&](const QString &text, qsizetype headingLength, qsizetype caret) {
        storage.beginEditing();
        storage.setText(text, plain);
        storage.setSelectedRange({caret, 0});
        storage.addAttributes({0, headingLength}, heading);
        // Within the batch the storage answers with what the batch made.
        EXPECT_EQ(storage.string(), text);
        EXPECT_EQ(storage.attributesAt(0).foreground, QStringLiteral("accent1Main"));
        storage.endEditing();
    };
    restyle(QStringLiteral("# Plan\nalpha\nbeta"), 6, 0);

    std::vector<std::pair<int, int>> changed;
    QObject::connect(editor.document(), &QTextDocument::contentsChange, [&](int position, int removed, int added) {
        changed.emplace_back(position, std::max(removed, added));
    });
    restyle(QStringLiteral("# Plan\nalpha\nbeta"), 6, 0);
    EXPECT_TRUE(changed.empty()) << "the same text styled the same way leaves the document alone";

    // One word changed, a longer heading, and a new line with a paragraph of its own.
    plain.paragraph->lineHeightMultiple = 1.5;
    changed.clear();
    restyle(QStringLiteral("# Plans\nalpha\nbeta\ngamma"), 7, 19);
    EXPECT_EQ(storage.string(), QStringLiteral("# Plans\nalpha\nbeta\ngamma"));
    EXPECT_EQ(storage.selectedRange(), (TextRange{19, 0}));
    ASSERT_FALSE(changed.empty());

    std::vector<std::pair<TextRange, QString>> runs;
    storage.enumerateRuns({0, storage.length()}, [&](const TextRange &r, const TextAttributes &a) {
        runs.emplace_back(r, a.foreground.value_or(QString()));
        EXPECT_EQ(a.paragraph, plain.paragraph);
    });
    EXPECT_EQ(runs, (std::vector<std::pair<TextRange, QString>>{{{0, 7}, QStringLiteral("accent1Main")},
                                                                {{7, 17}, QStringLiteral("typeMain")}}));
    // What the editor shows follows the stored attributes: the new line's paragraph
    // spacing and the heading's colour on the letter it gained.
    for (QTextBlock block = editor.document()->begin(); block.isValid(); block = block.next())
        EXPECT_DOUBLE_EQ(block.blockFormat().lineHeight(), 150.0) << block.text().toStdString();
    QTextCursor cursor(editor.document());
    cursor.setPosition(7);
    EXPECT_EQ(cursor.charFormat().foreground().color(), editor.theme().color(QStringLiteral("accent1Main")));
    EXPECT_EQ(editor.textCursor().position(), 19);
    EXPECT_TRUE(storage.mirrorsDocument());
}

TEST(DocumentTextStorage, WhatThePassesReadFollowsEveryKindOfEdit)
{
    NoteTextEdit editor;
    DocumentTextStorage &storage = editor.storage();
    Listening listening;
    storage.setDelegate(&listening);
    editor.loadText(QStringLiteral("first line\nsecond line\nthird"));
    storage.addAttributes({0, 5}, role(QStringLiteral("accent1Main")));
    TextAttributes typing = role(QStringLiteral("typeMain"));
    typing.paragraph = ParagraphSpec{};
    storage.setTypingAttributes(typing);
    EXPECT_TRUE(storage.mirrorsDocument());

    auto check = [&](const char *what) {
        EXPECT_TRUE(storage.mirrorsDocument()) << what;
        EXPECT_EQ(storage.string(), editor.toPlainText()) << what;
    };
    // Typing over a selection gives the selection the typing look first, then replaces it.
    storage.setSelectedRange({2, 6});
    QTest::keyClicks(&editor, QStringLiteral("X"));
    check("typed over a selection");
    EXPECT_EQ(storage.string(), QStringLiteral("fiXne\nsecond line\nthird"));

    storage.setSelectedRange({6, 0});
    QTest::keyClick(&editor, Qt::Key_Backspace);
    check("two paragraphs joined");
    QTest::keyClick(&editor, Qt::Key_Return);
    check("a paragraph split");
    QTest::keyClick(&editor, Qt::Key_Delete);
    check("deleted forward");

    storage.setSelectedRange({0, 4});
    QTest::keyClick(&editor, Qt::Key_X, Qt::ControlModifier);
    check("cut");
    storage.setSelectedRange({storage.length(), 0});
    QTest::keyClick(&editor, Qt::Key_V, Qt::ControlModifier);
    check("pasted");
    EXPECT_TRUE(storage.string().endsWith(QStringLiteral("fiXn")));

    editor.selectAll();
    QTest::keyClicks(&editor, QStringLiteral("all new"));
    check("everything replaced");
    EXPECT_EQ(storage.string(), QStringLiteral("all new"));
    EXPECT_EQ(storage.attributesAt(0).foreground, QStringLiteral("typeMain"));
}
