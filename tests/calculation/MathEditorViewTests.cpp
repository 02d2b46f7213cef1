// A math note in the desktop editor: the results appear on the editor's own document as
// the user types, and the result a key would land in is kept whole.

#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/NoteViewModel.h"
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

#include "calculation/QStringPrinter.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

class MathEditorView : public ::testing::Test {
protected:
    NoteEditorView &open(const QString &text)
    {
        Note note;
        note.id = QUuid::createUuid();
        note.content = text;
        m_view = std::make_unique<NoteEditorView>(m_context, std::make_shared<NoteViewModel>(note), nullptr);
        m_view->show();
        QCoreApplication::processEvents(); // the first full pass is queued
        return *m_view;
    }

    MemorySettingsStore m_settings;
    NotificationBus m_bus;
    ManualClock m_clock;
    KeywordPreferences m_keywordPreferences{m_settings, &m_bus};
    KeywordDefinitionsContainer m_keywords{m_keywordPreferences};
    VisualPreferences m_visual{m_settings};
    MiscPreferences m_misc{m_settings};
    MathPreferences m_math{m_settings};
    EditorContext m_context{m_keywords, m_visual, m_misc, m_bus, m_clock, &m_math};
    std::unique_ptr<NoteEditorView> m_view;
};

TEST_F(MathEditorView, ResultsFollowTheKeysAsTheyAreTyped)
{
    NoteTextEdit &edit = open(QStringLiteral("math\nprice: 5\nprice * 2 =")).textEdit();
    DocumentTextStorage &storage = edit.storage();
    EXPECT_EQ(storage.string(), u"math\nprice: 5\nprice * 2 = 10.00");

    storage.setSelectedRange({13, 0}); // behind "5"
    QTest::keyClick(&edit, Qt::Key_0);
    EXPECT_EQ(storage.string(), u"math\nprice: 50\nprice * 2 = 100.00");
    EXPECT_EQ(storage.selectedRange(), (TextRange{14, 0}));

    storage.setSelectedRange({storage.length(), 0});
    QTest::keyClick(&edit, Qt::Key_Return);
    QTest::keyClicks(&edit, QStringLiteral("price / 4 ="));
    EXPECT_EQ(storage.string(), u"math\nprice: 50\nprice * 2 = 100.00\nprice / 4 = 12.50");

    // The marks reach the document: the result is marked, and so is the use of price.
    const qsizetype result = storage.string().lastIndexOf(u"12.50");
    ASSERT_TRUE(storage.attributesAt(result).custom);
    EXPECT_EQ(storage.attributesAt(result).custom->subtag, u"calculatedFieldHighlight");
    ASSERT_TRUE(storage.attributesAt(result - 10).custom);
    EXPECT_EQ(storage.attributesAt(result - 10).custom->subtag, u"usedVariableHighlight");
}

} // namespace
