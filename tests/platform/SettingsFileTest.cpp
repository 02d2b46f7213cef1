#include "platform/SettingsFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <unistd.h>

using namespace scrivlet;

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(SettingsFile, ReadableFilesAreUsedAndKeepWhatIsWritten)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("settings.ini"));

    // A first start has no file yet.
    {
        SettingsFile::Opened opened = SettingsFile::open(path);
        EXPECT_TRUE(opened.problem.isEmpty());
        opened.store->setValue(QStringLiteral("selectedTheme"), QStringLiteral("Tokyo Drift"));
        opened.store->sync();
    }
    SettingsFile::Opened again = SettingsFile::open(path);
    EXPECT_TRUE(again.problem.isEmpty()) << qPrintable(again.problem);
    EXPECT_EQ(again.store->value(QStringLiteral("selectedTheme")).toString(), QStringLiteral("Tokyo Drift"));

    // Hand-edited files with non-ASCII text, comments and empty lines are still settings.
    write(path, "; mine\n[General]\n\nfontFamily=Menlo \xc3\xa9\nappIconPreference=menuOnly\n");
    SettingsFile::Opened edited = SettingsFile::open(path);
    EXPECT_TRUE(edited.problem.isEmpty()) << qPrintable(edited.problem);
    EXPECT_EQ(edited.store->value(QStringLiteral("appIconPreference")).toString(), QStringLiteral("menuOnly"));
}

TEST(SettingsFile, GarbageIsLeftUntouchedAndTheSessionRunsOnDefaults)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("settings.ini"));
    const QList<QByteArray> garbage = {
        QByteArray("\x7f"
                   "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0\x03\0>\0",
                   20),
        QByteArray("[General\nkey=\xff\xfe\x80value\n"),
    };
    for (const QByteArray &bytes : garbage) {
        write(path, bytes);
        SettingsFile::Opened opened = SettingsFile::open(path);
        EXPECT_FALSE(opened.problem.isEmpty()) << bytes.toHex().constData();
        EXPECT_FALSE(opened.store->contains(QStringLiteral("General/key")));
        // Whatever the session changes stays in memory.
        opened.store->setValue(QStringLiteral("popoverWidth"), 500.0);
        opened.store->sync();
        EXPECT_EQ(opened.store->value(QStringLiteral("popoverWidth")).toDouble(), 500.0);
        opened.store.reset();
        EXPECT_EQ(readAll(path), bytes) << "the user's file was written over";
    }
}

TEST(SettingsFile, UnreadableFilesAreNotUsed)
{
    QTemporaryDir dir;
    EXPECT_FALSE(SettingsFile::problem(dir.path()).isEmpty());

    const QString path = dir.filePath(QStringLiteral("locked.ini"));
    write(path, "[General]\nselectedTheme=Vancouver\n");
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::WriteOwner));
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser reads every file";
    SettingsFile::Opened opened = SettingsFile::open(path);
    EXPECT_FALSE(opened.problem.isEmpty());
    opened.store->setValue(QStringLiteral("selectedTheme"), QStringLiteral("Tokyo Drift"));
    opened.store->sync();
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    EXPECT_EQ(readAll(path), QByteArray("[General]\nselectedTheme=Vancouver\n"));
}
