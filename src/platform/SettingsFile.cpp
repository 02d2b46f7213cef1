#include "platform/SettingsFile.h"

#include "platform/MemorySettingsStore.h"
#include "platform/QSettingsStore.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringDecoder>

namespace scrivlet {

SettingsFile::Opened SettingsFile::open(const QString &iniFilePath)
{
    Opened opened;
    opened.problem = problem(iniFilePath);
    if (opened.problem.isEmpty())
        opened.store = std::make_unique<QSettingsStore>(iniFilePath);
    else
        opened.store = std::make_unique<MemorySettingsStore>();
    return opened;
}

QString SettingsFile::problem(const QString &iniFilePath)
{
    const QFileInfo info(iniFilePath);
    if (!info.exists())
        return {};
    if (info.isDir())
        return QStringLiteral("it is a folder");
    QFile file(iniFilePath);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("it can't be read (%1)").arg(file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return QStringLiteral("it can't be read (%1)").arg(file.errorString());

    // Settings are written as UTF-8 text; NUL bytes or broken UTF-8 mean something
    // else has taken the file's place, even where the lenient reader would make keys of it.
    if (bytes.contains('\0'))
        return QStringLiteral("it isn't a settings file (it holds binary data)");
    QStringDecoder utf8(QStringDecoder::Utf8);
    [[maybe_unused]] const QString text = utf8.decode(bytes);
    if (utf8.hasError())
        return QStringLiteral("it isn't a settings file (it isn't UTF-8 text)");

    const QSettings settings(iniFilePath, QSettings::IniFormat);
    switch (settings.status()) {
    case QSettings::NoError:
        return {};
    case QSettings::AccessError:
        return QStringLiteral("it can't be read");
    case QSettings::FormatError:
        return QStringLiteral("it isn't a settings file (its lines can't be read as settings)");
    }
    return {};
}

} // namespace scrivlet
