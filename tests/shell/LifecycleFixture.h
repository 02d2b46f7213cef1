#pragma once

#include "notes/CoreDataManager.h"
#include "notes/CoreDataNotesManager.h"
#include "notes/CoreDataStack.h"
#include "platform/ManualClock.h"
#include "platform/MemoryAlerts.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/RecordingWindowPresenter.h"
#include "shell/lifecycle/AppLifecycle.h"

#include <QDir>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

// Failures show the text, not its UTF-16 units. QString lives in the global namespace,
// so that is where GoogleTest looks for its printer.
inline void PrintTo(const QString &s, std::ostream *os)
{
    *os << '"' << s.toStdString() << '"';
}

namespace scrivlet::test {

// The app on a real store in a temporary folder, with in-memory settings, a clock the
// test moves and a window that writes down what is done to it. One journal holds the
// window's events and the notifications of the life cycle, in the order they happened.
class LifecycleTest : public ::testing::Test {
private:
    QTemporaryDir m_dir; // outlives the store that has files in it

protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }
    void TearDown() override { closeApp(); }

    // A launch: the store opens and the life cycle runs its start-up.
    AppLifecycle &launch()
    {
        closeApp();
        auto opened = CoreDataStack::open(dataPath());
        EXPECT_TRUE(opened.ok()) << opened.error().message.toStdString();
        stack = std::move(opened).value();
        presenter = std::make_unique<RecordingWindowPresenter>([this](const QString &event) { journal.append(event); });
        lifecycle = std::make_unique<AppLifecycle>(*stack, settings, bus, clock, alerts, presenter.get());
        for (const char *name : {"saveCurrentNote", "cleanUpDeletedArray", "newButtonClickedNotification"}) {
            const QString notification = QString::fromLatin1(name);
            m_watches.push_back(bus.subscribe(notification, [this, notification](const QVariantMap &) {
                journal.append(u"post " + notification);
            }));
        }
        m_watches.push_back(bus.subscribe(QStringLiteral("MessagePillNotification"), [this](const QVariantMap &info) {
            pills.append(info.value(QStringLiteral("message")).toString());
        }));
        journal.clear();
        pills.clear();
        lifecycle->start();
        return *lifecycle;
    }

    // The process ends: the life cycle and the store go, the files and settings stay.
    void closeApp()
    {
        m_watches.clear();
        lifecycle.reset();
        stack.reset();
        presenter.reset();
    }

    QString dataPath() const { return m_dir.path(); }
    CoreDataNotesManager &notes() { return lifecycle->notesManager(); }
    CoreDataManager &store() { return lifecycle->store(); }

    QStringList loadedTexts()
    {
        QStringList texts;
        for (const auto &model : notes().noteViewModels())
            texts << model->note().content;
        return texts;
    }

    QString openText()
    {
        const auto open = notes().currentNote();
        return open ? open->note().content : QStringLiteral("<none>");
    }

    // Types into the open note as the editor does: the text lands in the note's model
    // at once, the save comes later.
    void type(const QString &text)
    {
        auto open = notes().currentNote();
        ASSERT_TRUE(open);
        open->mutableNote().content = text;
    }

    QStringList backupFiles() const
    {
        return QDir(dataPath()).entryList({QStringLiteral("*_cdbackup_*.sqlite")}, QDir::Files, QDir::Name);
    }

    MemorySettingsStore settings;
    NotificationBus bus;
    ManualClock clock;
    MemoryAlerts alerts;
    QStringList journal;
    QStringList pills;
    std::unique_ptr<RecordingWindowPresenter> presenter;
    std::unique_ptr<CoreDataStack> stack;
    std::unique_ptr<AppLifecycle> lifecycle;

private:
    std::vector<NotificationBus::Subscription> m_watches;
};

} // namespace scrivlet::test
