#pragma once

#include "NotesStoreFixture.h"

#include "notes/CoreDataNotesManager.h"
#include "platform/MemoryAlerts.h"
#include "platform/NotificationBus.h"

#include <QStringList>

#include <utility>

namespace scrivlet::test {

// A store with the in-memory stack over it, its alerts answered from a queue, and
// every message pill it posts written down.
class NoteStackTest : public NotesStoreTest {
protected:
    using Pill = std::pair<QString, QString>; // message, type

    void SetUp() override
    {
        NotesStoreTest::SetUp();
        m_pillWatch = bus.subscribe(QStringLiteral("MessagePillNotification"), [this](const QVariantMap &payload) {
            pills.emplace_back(payload.value(QStringLiteral("message")).toString(),
                               payload.value(QStringLiteral("type")).toString());
        });
    }

    void TearDown() override { notes.reset(); }

    // Stack notes "note 1" (oldest) to "note <count>", ten thousand apart, as the app
    // would have written them.
    std::vector<QUuid> seedStack(int count, int firstNumber = 1)
    {
        std::vector<QUuid> ids;
        for (int i = 0; i < count; ++i) {
            const int number = firstNumber + i;
            ids.push_back(insertRaw({.content = QStringLiteral("note %1").arg(number),
                                     .dbIndex = qint64(number) * 10000,
                                     .lastModified = clock.now().toMSecsSinceEpoch(),
                                     .created = clock.now().toMSecsSinceEpoch()}));
        }
        return ids;
    }

    // Builds the stack as the app does at start. No slots unless a test wants them.
    void start(int slotCount = 0)
    {
        NotesPreferences(settings).setSlotedNotesLimit(slotCount);
        notes = std::make_unique<CoreDataNotesManager>(*manager, settings, bus, clock, alerts);
        notes->setUp();
        pills.clear();
    }

    QStringList loadedTexts() const
    {
        QStringList texts;
        for (const auto &model : notes->noteViewModels())
            texts << model->note().content;
        return texts;
    }

    QString openText() const
    {
        const auto open = notes->currentNote();
        return open ? open->note().content : QStringLiteral("<none>");
    }

    // Types into the open note as the editor does: the text lands in the model first.
    void type(const QString &text)
    {
        auto open = notes->currentNote();
        ASSERT_TRUE(open);
        Note note = open->note();
        note.content = text;
        open->setNote(note);
    }

    Pill lastPill() const { return pills.empty() ? Pill{} : pills.back(); }

    NotificationBus bus;
    MemoryAlerts alerts;
    std::unique_ptr<CoreDataNotesManager> notes;
    std::vector<Pill> pills;

private:
    NotificationBus::Subscription m_pillWatch;
};

} // namespace scrivlet::test
