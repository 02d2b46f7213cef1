#include "calculation/CurrencyRates.h"

#include "calculation/CalculationLog.h"
#include "platform/Clock.h"
#include "platform/HttpClient.h"
#include "platform/MessagePillTypes.h"
#include "platform/NotificationBus.h"
#include "platform/SettingsStore.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/PrivacyPreferences.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace scrivlet {

namespace {

const QString kCurrencySettingsKey = QStringLiteral("currencySettings");
const QString kLastUpdateKey = QStringLiteral("lastCurrencyUpdateDate");

// Fewer rates than this in one reply means something is off at the server; the reply
// is still used, since any rate is better than none.
constexpr qsizetype kExpectedRateCount = 50;

// Each manual row replaces the row of its code, or joins the table.
std::vector<CurrencySetting> overlay(const std::vector<CurrencySetting> &manual, std::vector<CurrencySetting> table)
{
    for (const CurrencySetting &setting : manual) {
        const auto same = std::find_if(table.begin(), table.end(),
                                       [&](const CurrencySetting &row) { return row.currency == setting.currency; });
        if (same != table.end())
            *same = setting;
        else
            table.push_back(setting);
    }
    return table;
}

// The server's rates as rows, in the order of the currencies; codes this version doesn't
// know are dropped. Rates are against the US dollar, so the dollar is 1.0 even if a reply
// forgets to say so.
std::vector<CurrencySetting> fetchedRows(const CurrencyRates::FetchedRates &rates)
{
    std::vector<CurrencySetting> rows;
    rows.reserve(std::size_t(rates.size()));
    bool hasDollar = false;
    for (int i = 0; i < kCurrencyUnitCount; ++i) {
        const CurrencyUnit currency = currencyUnitAt(i);
        const auto found = rates.constFind(currencyCode(currency));
        if (found == rates.constEnd())
            continue;
        rows.push_back(CurrencySetting::make(currency, *found));
        hasDollar = hasDollar || currency == CurrencyUnit::usd;
    }
    if (!hasDollar)
        rows.push_back(CurrencySetting::make(CurrencyUnit::usd, 1.0));
    return rows;
}

// Manual rows first, then every fetched row of a code the user hasn't set.
std::vector<CurrencySetting> manualBeforeFetched(const std::vector<CurrencySetting> &manual,
                                                 const std::vector<CurrencySetting> &fetched)
{
    std::vector<CurrencySetting> table = manual;
    for (const CurrencySetting &row : fetched) {
        const bool setByHand = std::any_of(manual.begin(), manual.end(), [&](const CurrencySetting &setting) {
            return setting.currency == row.currency;
        });
        if (!setByHand)
            table.push_back(row);
    }
    return table;
}

QString serverAddress(const QString &base)
{
    QString address = base.trimmed();
    while (address.endsWith(u'/'))
        address.chop(1);
    return address;
}

} // namespace

CurrencyRates::CurrencyRates(SettingsStore &store, Clock &clock, NotificationBus &bus, HttpClient *http)
    : m_store(store), m_clock(clock), m_bus(bus), m_http(http)
{
}

CurrencyRates::~CurrencyRates() = default;

std::optional<double> CurrencyRates::rate(CurrencyUnit currency) const
{
    for (const CurrencySetting &setting : m_currencySettings) {
        if (setting.currency == currency)
            return setting.conversionRate;
    }
    return std::nullopt;
}

void CurrencyRates::updateCurrencyRates(std::function<void()> done)
{
    if (done)
        m_waiting.push_back(std::move(done));
    if (m_updateInFlight)
        return;

    if (const auto saved = savedTable(); saved && updatedToday()) {
        // The stored table stays as the server sent it; the manual rates are laid over it
        // in memory only, so that a rate the user removes again gives way to the server's.
        settle(overlay(manualRates(MathPreferences(m_store).manualCurrencyRates()), *saved));
        return;
    }

    m_updateInFlight = true;
    const std::weak_ptr<int> alive = m_lifetime;
    fetchCurrencyRates([this, alive](const FetchResult &result) {
        if (alive.expired())
            return;
        finishUpdate(result);
    });
}

void CurrencyRates::fetchCurrencyRates(std::function<void(const FetchResult &result)> done)
{
    // Every outcome reaches `done` later on the main loop, never inside this call, so a
    // caller sees the same order of events whether or not a request left.
    const std::weak_ptr<int> alive = m_lifetime;
    auto failLater = [alive, done](CurrencyFetchError error) {
        QTimer::singleShot(0, [alive, done, error] {
            if (!alive.expired())
                done(FetchResult::failure(error));
        });
    };

    const PrivacyPreferences privacy(m_store);
    if (!privacy.updateConversionRates()) {
        qCInfo(lcCalculation) << "Fetching currency rates blocked by user preferences";
        failLater(CurrencyFetchError::updateBlockedByUserPreferences);
        return;
    }

    qCInfo(lcCalculation) << "Fetching currency rates from server";
    const QUrl url(serverAddress(privacy.apiServerAddress()) + conversionRatesPath());
    if (!m_http || !url.isValid() || (url.scheme() != u"https" && url.scheme() != u"http") || url.host().isEmpty()) {
        const QString reason =
            m_http ? QStringLiteral("the API server address \"%1\" is no web address").arg(privacy.apiServerAddress())
                   : QStringLiteral("no network access in this run");
        qCWarning(lcCalculation).noquote() << QStringLiteral("API request failed: %1").arg(reason);
        failLater(CurrencyFetchError::requestFailed);
        return;
    }

    HttpClient::Request request;
    request.method = QByteArrayLiteral("POST");
    request.url = url;
    request.headers = {{QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json")}};
    request.body = QByteArrayLiteral("{}");
    request.timeout = m_timeout;
    m_http->send(
        request, [alive, done](const HttpClient::Reply &reply) {
            if (alive.expired())
                return;
            if (!reply.succeeded()) {
                qCWarning(lcCalculation).noquote() << QStringLiteral("API request failed: %1").arg(reply.failureText());
                done(FetchResult::failure(CurrencyFetchError::requestFailed));
                return;
            }
            auto parsed = parseRatesReply(reply.body);
            if (!parsed) {
                qCWarning(lcCalculation).noquote() << QStringLiteral("API request failed: %1").arg(parsed.error());
                done(FetchResult::failure(CurrencyFetchError::invalidReply));
                return;
            }
            const FetchedRates &rates = parsed.value();
            if (rates.size() < kExpectedRateCount)
                qCCritical(lcCalculation) << "Fewer than 50 rates were fetched from API. Investigation needed.";
            qCInfo(lcCalculation).noquote()
                << QStringLiteral("Successfully fetched updated rates for %1 currencies.").arg(rates.size());
            done(FetchResult(rates));
        });
}

void CurrencyRates::finishUpdate(const FetchResult &result)
{
    m_updateInFlight = false;
    // The manual rates of this moment, not of when the request left: the user may have
    // changed them while it was under way.
    const std::vector<CurrencySetting> manual = manualRates(MathPreferences(m_store).manualCurrencyRates());
    if (result) {
        const std::vector<CurrencySetting> fetched = fetchedRows(result.value());
        m_store.setValue(kCurrencySettingsKey, CurrencySetting::encodeList(fetched));
        m_store.setValue(kLastUpdateKey, double(m_clock.now().toMSecsSinceEpoch()) / 1000.0);
        m_store.sync();
        settle(manualBeforeFetched(manual, fetched));
        return;
    }
    if (const auto saved = savedTable()) {
        settle(overlay(manual, *saved));
        m_bus.postMessagePill(
            QStringLiteral("Failed to fetch latest currency rates. Using saved rates with manual overrides."),
            MessagePillTypes::warning());
    } else {
        settle(manual);
        m_bus.postMessagePill(QStringLiteral("Failed to fetch latest currency rates. Using only manual rates."),
                              MessagePillTypes::warning());
    }
}

void CurrencyRates::useRates(const FetchedRates &rates)
{
    settle(manualBeforeFetched(manualRates(MathPreferences(m_store).manualCurrencyRates()), fetchedRows(rates)));
}

void CurrencyRates::settle(std::vector<CurrencySetting> table)
{
    m_currencySettings = std::move(table);
    // A callback may start the next update, which queues its own callbacks afresh.
    const std::vector<std::function<void()>> waiting = std::exchange(m_waiting, {});
    for (const auto &callback : waiting)
        callback();
}

std::optional<std::vector<CurrencySetting>> CurrencyRates::savedTable() const
{
    const QVariant stored = m_store.value(kCurrencySettingsKey);
    if (!stored.isValid())
        return std::nullopt;
    return CurrencySetting::decodeList(stored.toString());
}

bool CurrencyRates::updatedToday() const
{
    const QVariant stored = m_store.value(kLastUpdateKey);
    bool ok = false;
    const double seconds = stored.toDouble(&ok);
    if (!stored.isValid() || !ok || !std::isfinite(seconds))
        return false;
    // Today is the user's calendar day, where the user is.
    const QDateTime last = QDateTime::fromMSecsSinceEpoch(qint64(seconds * 1000.0)).toLocalTime();
    return last.date() == m_clock.now().toLocalTime().date();
}

Result<CurrencyRates::FetchedRates, QString> CurrencyRates::parseRatesReply(const QByteArray &json)
{
    using Parsed = Result<FetchedRates, QString>;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return Parsed::failure(QStringLiteral("the reply is not JSON (%1)").arg(error.errorString()));
    if (!document.isObject())
        return Parsed::failure(QStringLiteral("the reply is not a JSON object"));
    const QJsonValue ratesValue = document.object().value(QStringLiteral("rates"));
    if (!ratesValue.isObject())
        return Parsed::failure(QStringLiteral("the reply has no \"rates\" object"));
    const QJsonObject rates = ratesValue.toObject();

    // One impossible rate means the table can't be trusted as a whole: taking the rest
    // would mix good rows with whatever broke the bad one, so the reply is refused and
    // conversions stay on the last good table.
    FetchedRates out;
    out.reserve(rates.size());
    bool knowsACurrency = false;
    for (auto it = rates.constBegin(); it != rates.constEnd(); ++it) {
        const double rate = it.value().toDouble(-1.0);
        if (!it.value().isDouble() || !std::isfinite(rate) || rate <= 0.0)
            return Parsed::failure(QStringLiteral("the rate of \"%1\" is not a positive number").arg(it.key()));
        out.insert(it.key(), rate);
        knowsACurrency = knowsACurrency || currencyUnitFromCode(it.key()).has_value();
    }
    if (!knowsACurrency)
        return Parsed::failure(QStringLiteral("the reply names no known currency"));
    return out;
}

std::vector<CurrencySetting> CurrencyRates::manualRates(const QString &text)
{
    std::vector<CurrencySetting> manual;
    const QStringList pieces = text.split(u',', Qt::SkipEmptyParts);
    for (const QString &piece : pieces) {
        const QStringList parts = piece.split(u':');
        if (parts.size() != 2)
            continue;
        bool ok = false;
        const double rate = parts.at(1).trimmed().toDouble(&ok);
        const auto currency = currencyUnitFromCode(parts.at(0).trimmed().toUpper());
        // The dollar is what every rate is measured against: it is 1.0 by definition.
        if (!ok || !currency || *currency == CurrencyUnit::usd || !std::isfinite(rate) || rate <= 0.0)
            continue;
        const auto same = std::find_if(manual.begin(), manual.end(),
                                       [&](const CurrencySetting &setting) { return setting.currency == *currency; });
        if (same != manual.end())
            same->conversionRate = rate;
        else
            manual.push_back(CurrencySetting::make(*currency, rate));
    }
    return manual;
}

const QRegularExpression &CurrencyRates::manualRatesPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(\s*|\b(?!USD\b)(\w{2,5}:\d+(\.\d+)?)(\s*,\s*(?!USD\b)\w{2,5}:\d+(\.\d+)?)*\s*)$)"),
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

bool CurrencyRates::isValidManualRatesText(const QString &text)
{
    return manualRatesPattern().match(text).hasMatch();
}

QString CurrencyRates::manualRatesValidationMessage()
{
    return QStringLiteral("Please enter valid currency rates in the format: 'CAD:1.34, NTD:30.230' (USD is not "
                          "allowed as it's defined as 1.0)");
}

QString CurrencyRates::manualRatesHelpText()
{
    return QStringLiteral("Comma-separated. Using USD as 1.0. Formatted like: 'CAD:1.22, NTD:30.23'");
}

} // namespace scrivlet
