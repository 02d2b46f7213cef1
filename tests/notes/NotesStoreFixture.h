#pragma once

#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/LocalEditRecorder.h"
#include "notes/PendingChangeSink.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"

#include <QTemporaryDir>
#include <QVariant>

#include <gtest/gtest.h>

#include <memory>

namespace scrivlet::test {

// Stands in for the sync engine: remembers what a save handed over.
class RecordingSink final : public PendingChangeSink {
public:
    void addPendingSaves(const QList<QUuid> &noteIds) override { saves += noteIds; }
    void addPendingDeletions(const QList<QUuid> &noteIds) override { deletions += noteIds; }
    void clear()
    {
        saves.clear();
        deletions.clear();
    }
    QList<QUuid> saves;
    QList<QUuid> deletions;
};

class RecordingEditRecorder final : public LocalEditRecorder {
public:
    void recordLocalEdit(const Note &note) override { edits.push_back(note); }
    std::vector<Note> edits;
};

// A row written straight into the notes table, for states the app's own writes never
// make (nil flags, positions from old devices).
struct RawNote {
    QVariant id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    QVariant content = QStringLiteral("text");
    qint64 dbIndex = 10000;
    bool isSlotted = false;
    QVariant softDeleted = 0;
    QVariant deletedAt;
    QVariant lastModified;
    QVariant created;
    QVariant ckChangeTag;
};

// A store on a fresh temporary folder, with a manager over it and sync switched on.
class NotesStoreTest : public ::testing::Test {
private:
    QTemporaryDir m_dir; // outlives the store that has files in it

protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        openStore();
        NotesPreferences(settings).setSyncWithICloud(true);
    }

    void openStore()
    {
        manager.reset();
        stack.reset();
        auto opened = CoreDataStack::open(m_dir.path());
        ASSERT_TRUE(opened.ok()) << opened.error().message.toStdString();
        stack = std::move(opened).value();
        manager = std::make_unique<CoreDataManager>(*stack, settings, clock);
        manager->setPendingChangeSink(&sink);
        manager->setLocalEditRecorder(&recorder);
    }

    QString dataPath() const { return m_dir.path(); }

    QUuid insertRaw(const RawNote &row)
    {
        Statement insert = stack->database().prepare(QStringLiteral(
            "INSERT INTO notes (id, content, dbIndex, isSlotted, softDeleted, deletedAt, lastModified, created, "
            "ckChangeTag) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)"));
        const QVariant values[] = {row.id,        row.content,      row.dbIndex, row.isSlotted,  row.softDeleted,
                                   row.deletedAt, row.lastModified, row.created, row.ckChangeTag};
        for (int i = 0; i < 9; ++i) {
            const QVariant &value = values[i];
            if (value.isNull())
                insert.bindNull(i + 1);
            else if (value.metaType().id() == QMetaType::QString)
                insert.bind(i + 1, value.toString());
            else
                insert.bind(i + 1, value.toLongLong());
        }
        EXPECT_TRUE(insert.exec()) << insert.lastError().toStdString();
        return QUuid(row.id.toString());
    }

    qint64 count(const QString &sql) { return stack->database().queryInt(sql).value_or(-1); }

    ManualClock clock;
    MemorySettingsStore settings;
    RecordingSink sink;
    RecordingEditRecorder recorder;
    std::unique_ptr<CoreDataStack> stack;
    std::unique_ptr<CoreDataManager> manager;
};

} // namespace scrivlet::test
