#pragma once

#include "calculation/CurrencySetting.h"
#include "platform/Result.h"

#include <QHash>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QRegularExpression;

namespace scrivlet {

class Clock;
class HttpClient;
class NotificationBus;
class SettingsStore;

enum class CurrencyFetchError {
    // The user has switched the daily rate update off in the privacy settings.
    updateBlockedByUserPreferences,
    // No usable reply: no connection, a time-out, a dropped connection, or a status
    // other than success.
    requestFailed,
    // The server answered with something that is no rate table.
    invalidReply,
};

// The exchange rates that currency conversions read, as units of each currency per
// US dollar. Rates come from the product's API server at most once a calendar day,
// are kept in the settings store, and are overlaid by the rates the user sets by hand,
// which work even with the update switched off. A failed update never empties a working
// table: the saved rates stay in force and the next update tries the server again.
//
// One instance lives on the main thread; the table changes only there, because math
// lines read it there.
class CurrencyRates final {
public:
    // What the server sends: code to rate, codes as the server spells them.
    using FetchedRates = QHash<QString, double>;
    using FetchResult = Result<FetchedRates, CurrencyFetchError>;

    static constexpr std::chrono::milliseconds kDefaultTimeout{std::chrono::seconds(15)};

    // `http` may be null for a table that never goes to the network (the command line);
    // an update then fails as an unreachable server does.
    CurrencyRates(SettingsStore &store, Clock &clock, NotificationBus &bus, HttpClient *http = nullptr);
    ~CurrencyRates();
    CurrencyRates(const CurrencyRates &) = delete;
    CurrencyRates &operator=(const CurrencyRates &) = delete;

    // The table in force. Empty until the first update or `useRates`.
    const std::vector<CurrencySetting> &currencySettings() const { return m_currencySettings; }
    // The rate of `currency` in the table in force; the first row of its code counts.
    std::optional<double> rate(CurrencyUnit currency) const;

    // The whole refresh: the saved table under today's manual rates when it was fetched
    // today, otherwise one request to the server. `done` runs on the main thread once
    // the table in force is up to date, whichever way that went. Runs at start-up and
    // whenever the manual rates change. While a request is under way a second call makes
    // no request of its own; the reply in flight serves it, with the manual rates of
    // the moment it arrives.
    void updateCurrencyRates(std::function<void()> done = {});

    // One request for the server's rates, without touching the table.
    void fetchCurrencyRates(std::function<void(const FetchResult &result)> done);

    // Puts `rates` in force under the manual overlay, as a successful update does, but
    // without saving anything: a one-off table such as the command line's --rates file.
    void useRates(const FetchedRates &rates);

    void setRequestTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    bool isUpdating() const { return m_updateInFlight; }

    // Reads a reply of the rates endpoint: a JSON object with the object `rates` of
    // code to number. Fields beside `rates` are ignored. The error text says what is
    // wrong; a reply with a rate that is not a positive, finite number is refused whole.
    static Result<FetchedRates, QString> parseRatesReply(const QByteArray &json);

    // The user's manual rates ("CAD:1.34, NTD:30.23") as rows with fresh ids. Codes are
    // read in any case; unknown codes, unreadable and non-positive rates are left out;
    // of a code given twice the later rate counts.
    static std::vector<CurrencySetting> manualRates(const QString &text);

    // The settings form's check of the manual rates text, its refusal and its help.
    static const QRegularExpression &manualRatesPattern();
    static bool isValidManualRatesText(const QString &text);
    static QString manualRatesValidationMessage();
    static QString manualRatesHelpText();

    // The server's address of the rates, on the configured API server.
    static QString conversionRatesPath() { return QStringLiteral("/api/conversionRates"); }

private:
    void finishUpdate(const FetchResult &result);
    void settle(std::vector<CurrencySetting> table);
    std::optional<std::vector<CurrencySetting>> savedTable() const;
    bool updatedToday() const;

    SettingsStore &m_store;
    Clock &m_clock;
    NotificationBus &m_bus;
    HttpClient *m_http;
    std::chrono::milliseconds m_timeout = kDefaultTimeout;
    std::vector<CurrencySetting> m_currencySettings;
    bool m_updateInFlight = false;
    std::vector<std::function<void()>> m_waiting;
    // Replies that arrive after this table is gone find the token expired and do nothing.
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(0);
};

} // namespace scrivlet
