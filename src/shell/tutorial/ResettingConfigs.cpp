#include "shell/tutorial/ResettingConfigs.h"

#include "platform/SettingsStore.h"
#include "shell/tutorial/AppReset.h"
#include "shell/tutorial/ShellLogging.h"

namespace scrivlet {

namespace {

QStringList wipeDatabaseFiles(const QString &dataDirectory)
{
    const AppReset::Outcome removed =
        AppReset::removeFiles(AppReset::storeFiles(dataDirectory) + AppReset::legacyDatabaseFiles(dataDirectory));
    return removed.failures;
}

} // namespace

QStringList ResettingConfigs::switchNames()
{
    return {QStringLiteral("resetToCleanInstall"), QStringLiteral("resetToCleanInstallKeepKeychain"),
            QStringLiteral("resetAppStorage"), QStringLiteral("resetKeychain"),
            QStringLiteral("resetCurrencyRatesOnly")};
}

bool ResettingConfigs::set(const QString &name)
{
    bool *const switches[] = {&resetToCleanInstall, &resetToCleanInstallKeepKeychain, &resetAppStorage,
                              &resetKeychain, &resetCurrencyRatesOnly};
    const qsizetype index = switchNames().indexOf(name);
    if (index < 0)
        return false;
    *switches[index] = true;
    return true;
}

bool ResettingConfigs::isAnySet() const
{
    return resetToCleanInstall || resetToCleanInstallKeepKeychain || resetAppStorage || resetKeychain ||
           resetCurrencyRatesOnly;
}

QStringList ResettingConfigs::applyAtStart(SettingsStore &settings, const QString &dataDirectory)
{
    QStringList done;
    auto wipeEverything = [&](bool &used, const QString &name) {
        used = false;
        settings.clear();
        settings.sync();
        const QStringList failures = wipeDatabaseFiles(dataDirectory);
        done.append(failures.isEmpty() ? QString(name + u": settings and database files wiped")
                                       : QString(name + u": settings wiped; " + failures.join(QStringLiteral("; "))));
    };

    if (resetToCleanInstall) {
        wipeEverything(resetToCleanInstall, QStringLiteral("resetToCleanInstall"));
    } else if (resetToCleanInstallKeepKeychain) {
        wipeEverything(resetToCleanInstallKeepKeychain, QStringLiteral("resetToCleanInstallKeepKeychain"));
    } else {
        if (resetAppStorage) {
            resetAppStorage = false;
            settings.clear();
            settings.sync();
            done.append(QStringLiteral("resetAppStorage: settings wiped"));
        }
        if (resetKeychain) {
            resetKeychain = false;
            done.append(QStringLiteral("resetKeychain: keychain items left alone"));
        }
        if (resetCurrencyRatesOnly) {
            resetCurrencyRatesOnly = false;
            done.append(QStringLiteral("resetCurrencyRatesOnly: cleared"));
        }
    }

    for (const QString &line : done)
        qCInfo(lcShell).noquote() << "Start switch" << line;
    return done;
}

} // namespace scrivlet
