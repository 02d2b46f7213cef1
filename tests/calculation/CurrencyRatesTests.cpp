#include "calculation/CurrencyRates.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/network/QtHttpClient.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/PrivacyPreferences.h"
#include "support/LocalHttpServer.h"

#include "calculation/QStringPrinter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <gtest/gtest.h>

#include <ctime>

using namespace scrivlet;
using namespace std::chrono_literals;
using test::LocalHttpServer;

namespace {

const QByteArray kRatesPath = QByteArrayLiteral("/api/conversionRates");
const QString kSavedAndManual =
    QStringLiteral("Failed to fetch latest currency rates. Using saved rates with manual overrides.");
const QString kManualOnly = QStringLiteral("Failed to fetch latest currency rates. Using only manual rates.");

// Collects what the calculation area logs while it lives.
class LogCapture {
public:
    LogCapture() : m_previous(qInstallMessageHandler(&LogCapture::record)) { s_current = this; }
    ~LogCapture()
    {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }

    bool contains(QtMsgType type, const QString &text) const
    {
        return std::any_of(m_lines.begin(), m_lines.end(),
                           [&](const auto &line) { return line.first == type && line.second.contains(text); });
    }

private:
    static void record(QtMsgType type, const QMessageLogContext &, const QString &message)
    {
        if (s_current)
            s_current->m_lines.append({type, message});
    }

    static inline LogCapture *s_current = nullptr;
    QtMessageHandler m_previous;
    QList<std::pair<QtMsgType, QString>> m_lines;
};

// A reply of the rates endpoint with `count` rates: the dollar, CAD at 1.36, EUR at
// 0.92, then other currencies, and a field the client must ignore.
QByteArray ratesReply(int count, const QJsonObject &extra = {})
{
    QJsonObject rates{{QStringLiteral("USD"), 1.0}, {QStringLiteral("CAD"), 1.36}, {QStringLiteral("EUR"), 0.92}};
    for (int i = 0; rates.size() < count; ++i) {
        if (!rates.contains(currencyCode(currencyUnitAt(i))))
            rates.insert(currencyCode(currencyUnitAt(i)), 2.0 + i);
    }
    for (auto it = extra.begin(); it != extra.end(); ++it)
        rates.insert(it.key(), it.value());
    return QJsonDocument(QJsonObject{{QStringLiteral("rates"), rates}, {QStringLiteral("updated"), 1767225600}})
        .toJson();
}

class CurrencyRatesTest : public ::testing::Test {
protected:
    CurrencyRatesTest()
    {
        // A zone far from UTC, so that a calendar day in UTC and the user's own differ.
        m_savedZone = qgetenv("TZ");
        qputenv("TZ", "Pacific/Auckland");
        tzset();
    }
    ~CurrencyRatesTest() override
    {
        qputenv("TZ", m_savedZone);
        tzset();
    }

    void SetUp() override
    {
        ASSERT_TRUE(server.start());
        PrivacyPreferences(store).setApiServerAddress(server.url().toString());
        clock.setNow(QDateTime(QDate(2026, 3, 10), QTime(9, 0), Qt::LocalTime));
        rates.setRequestTimeout(2s);
    }

    void serve(LocalHttpServer::Reply reply)
    {
        server.setReply(QByteArrayLiteral("POST"), kRatesPath, std::move(reply));
    }

    // Runs one refresh of `table` to its end.
    static void refresh(CurrencyRates &table)
    {
        bool done = false;
        table.updateCurrencyRates([&] { done = true; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 10000));
    }

    // A table fetched on the day before, as a previous run left it.
    void saveYesterdaysTable()
    {
        store.setValue(QStringLiteral("currencySettings"),
                       CurrencySetting::encodeList({CurrencySetting::make(CurrencyUnit::usd, 1.0),
                                                    CurrencySetting::make(CurrencyUnit::cad, 1.30),
                                                    CurrencySetting::make(CurrencyUnit::eur, 0.90)}));
        store.setValue(QStringLiteral("lastCurrencyUpdateDate"),
                       double(clock.now().addDays(-1).toMSecsSinceEpoch()) / 1000.0);
    }

    MemorySettingsStore store;
    ManualClock clock;
    NotificationBus bus;
    QtHttpClient http;
    LocalHttpServer server;
    CurrencyRates rates{store, clock, bus, &http};
    QStringList pills;
    NotificationBus::Subscription pillSubscription =
        bus.subscribe(QStringLiteral("MessagePillNotification"), [this](const QVariantMap &payload) {
            pills.append(payload.value(QStringLiteral("message")).toString());
        });

private:
    QByteArray m_savedZone;
};

TEST_F(CurrencyRatesTest, FetchesAtMostOncePerLocalCalendarDay)
{
    serve(LocalHttpServer::Reply::json(ratesReply(60)));
    clock.setNow(QDateTime(QDate(2026, 3, 10), QTime(23, 30), Qt::LocalTime));
    refresh(rates);

    ASSERT_EQ(server.requestCount(kRatesPath), 1);
    const LocalHttpServer::Request &request = server.requests().constFirst();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.body, "{}");
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.36);
    EXPECT_EQ(rates.rate(CurrencyUnit::usd), 1.0);
    EXPECT_EQ(rates.currencySettings().size(), 60u);
    EXPECT_TRUE(pills.isEmpty());

    // Later the same evening, and in a fresh run of the app: the saved table serves.
    clock.advance(20min);
    refresh(rates);
    CurrencyRates nextRun(store, clock, bus, &http);
    refresh(nextRun);
    EXPECT_EQ(server.requestCount(kRatesPath), 1);
    EXPECT_EQ(nextRun.rate(CurrencyUnit::cad), 1.36);
    EXPECT_EQ(nextRun.currencySettings().size(), 60u);

    // Past local midnight, though in UTC it is still the same morning.
    clock.advance(20min);
    refresh(rates);
    EXPECT_EQ(server.requestCount(kRatesPath), 2);
}

TEST_F(CurrencyRatesTest, ManualRatesBeatFetchedRatesInEveryPath)
{
    MathPreferences math(store);
    math.setManualCurrencyRates(QStringLiteral("CAD:1.34, eur : 0.5,USD:2, XYZ:3, GBP:abc,, JPY:0"));
    serve(
        LocalHttpServer::Reply::json(ratesReply(60, {{QStringLiteral("GBP"), 0.79}, {QStringLiteral("JPY"), 150.0}})));

    // A fresh fetch.
    refresh(rates);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.34);
    EXPECT_EQ(rates.rate(CurrencyUnit::eur), 0.5);
    EXPECT_EQ(rates.rate(CurrencyUnit::usd), 1.0); // the dollar is 1.0 by definition
    EXPECT_EQ(rates.rate(CurrencyUnit::gbp), 0.79);
    EXPECT_EQ(rates.rate(CurrencyUnit::jpy), 150.0);

    // The same day, from the saved table; a rate the user drops gives way to the server's.
    math.setManualCurrencyRates(QStringLiteral("CAD:1.5"));
    refresh(rates);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.5);
    EXPECT_EQ(rates.rate(CurrencyUnit::eur), 0.92);
    EXPECT_EQ(server.requestCount(kRatesPath), 1);

    // The next day the server fails: the saved table, still under the manual rates.
    serve(LocalHttpServer::Reply::json("{}", 503));
    clock.advance(24h);
    refresh(rates);
    EXPECT_EQ(server.requestCount(kRatesPath), 2);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.5);
    EXPECT_EQ(rates.rate(CurrencyUnit::gbp), 0.79);
    EXPECT_EQ(pills, QStringList{kSavedAndManual});
}

TEST_F(CurrencyRatesTest, FewerThanFiftyRatesAreUsedButLoggedAsAnError)
{
    serve(LocalHttpServer::Reply::json(ratesReply(49)));
    LogCapture log;
    refresh(rates);
    EXPECT_EQ(rates.currencySettings().size(), 49u);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.36);
    EXPECT_TRUE(log.contains(QtCriticalMsg,
                             QStringLiteral("Fewer than 50 rates were fetched from API. Investigation needed.")));
    EXPECT_TRUE(log.contains(QtInfoMsg, QStringLiteral("Successfully fetched updated rates for 49 currencies.")));
    EXPECT_TRUE(log.contains(QtInfoMsg, QStringLiteral("Fetching currency rates from server")));
}

TEST_F(CurrencyRatesTest, WithTheUpdateSwitchedOffNoRequestLeaves)
{
    serve(LocalHttpServer::Reply::json(ratesReply(60)));
    PrivacyPreferences(store).setUpdateConversionRates(false);
    MathPreferences(store).setManualCurrencyRates(QStringLiteral("CAD:1.34"));
    LogCapture log;

    refresh(rates);
    EXPECT_EQ(server.requests().size(), 0);
    ASSERT_EQ(rates.currencySettings().size(), 1u);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.34);
    EXPECT_EQ(pills, QStringList{kManualOnly});
    EXPECT_TRUE(log.contains(QtInfoMsg, QStringLiteral("Fetching currency rates blocked by user preferences")));

    // With a table saved by an earlier run, that table stays in force.
    saveYesterdaysTable();
    pills.clear();
    refresh(rates);
    EXPECT_EQ(server.requests().size(), 0);
    EXPECT_EQ(rates.rate(CurrencyUnit::eur), 0.90);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.34);
    EXPECT_EQ(pills, QStringList{kSavedAndManual});
}

TEST_F(CurrencyRatesTest, OneRequestServesRefreshesAskedForWhileItRuns)
{
    LocalHttpServer::Reply slow = LocalHttpServer::Reply::json(ratesReply(60));
    slow.delay = 200ms;
    serve(slow);
    int finished = 0;
    rates.updateCurrencyRates([&] { ++finished; });
    rates.updateCurrencyRates([&] { ++finished; });
    EXPECT_TRUE(rates.isUpdating());
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished == 2; }, 10000));
    EXPECT_EQ(server.requestCount(kRatesPath), 1);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.36);
}

TEST_F(CurrencyRatesTest, AReplyForATableThatIsGoneIsDropped)
{
    LocalHttpServer::Reply slow = LocalHttpServer::Reply::json(ratesReply(60));
    slow.delay = 100ms;
    serve(slow);
    auto doomed = std::make_unique<CurrencyRates>(store, clock, bus, &http);
    doomed->updateCurrencyRates();
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.requestCount(kRatesPath) == 1; }, 10000));
    doomed.reset();
    QTest::qWait(400);
    EXPECT_FALSE(store.contains(QStringLiteral("currencySettings")));
    EXPECT_FALSE(store.contains(QStringLiteral("lastCurrencyUpdateDate")));
}

struct BadReply {
    const char *name;
    LocalHttpServer::Reply reply;
};

void PrintTo(const BadReply &reply, std::ostream *os)
{
    *os << reply.name;
}

class CurrencyRatesBadReplyTest : public CurrencyRatesTest, public ::testing::WithParamInterface<BadReply> {};

TEST_P(CurrencyRatesBadReplyTest, ChangesNothingStoredAndKeepsTheLastGoodTable)
{
    rates.setRequestTimeout(300ms);
    serve(GetParam().reply);
    saveYesterdaysTable();
    MathPreferences(store).setManualCurrencyRates(QStringLiteral("EUR:0.8"));
    const QVariant savedTable = store.value(QStringLiteral("currencySettings"));
    const QVariant savedDate = store.value(QStringLiteral("lastCurrencyUpdateDate"));
    LogCapture log;

    refresh(rates);
    // The network layer may try a dropped connection once more on its own.
    const int requests = server.requestCount(kRatesPath);
    EXPECT_GE(requests, 1);
    EXPECT_EQ(store.value(QStringLiteral("currencySettings")), savedTable);
    EXPECT_EQ(store.value(QStringLiteral("lastCurrencyUpdateDate")), savedDate);
    EXPECT_EQ(rates.rate(CurrencyUnit::cad), 1.30);
    EXPECT_EQ(rates.rate(CurrencyUnit::eur), 0.8);
    EXPECT_EQ(rates.currencySettings().size(), 3u);
    EXPECT_EQ(pills, QStringList{kSavedAndManual});
    EXPECT_TRUE(log.contains(QtWarningMsg, QStringLiteral("API request failed: ")));

    // The day still counts as not updated: the next refresh asks again.
    refresh(rates);
    EXPECT_GT(server.requestCount(kRatesPath), requests);
}

LocalHttpServer::Reply delayed(std::chrono::milliseconds delay)
{
    LocalHttpServer::Reply reply = LocalHttpServer::Reply::json(ratesReply(60));
    reply.delay = delay;
    return reply;
}

INSTANTIATE_TEST_SUITE_P(
    Replies, CurrencyRatesBadReplyTest,
    ::testing::Values(
        BadReply{"NotJson", LocalHttpServer::Reply::json("<html>Service moved</html>")},
        BadReply{"NotAnObject", LocalHttpServer::Reply::json("[1, 2, 3]")},
        BadReply{"NoRates", LocalHttpServer::Reply::json(R"({"base": "USD"})")},
        BadReply{"EmptyRates", LocalHttpServer::Reply::json(R"({"rates": {}})")},
        BadReply{"OnlyUnknownCodes", LocalHttpServer::Reply::json(R"({"rates": {"ZZZ": 1.5, "QQQ": 2}})")},
        BadReply{"ZeroRate", LocalHttpServer::Reply::json(ratesReply(60, {{QStringLiteral("JPY"), 0}}))},
        BadReply{"NegativeRate", LocalHttpServer::Reply::json(ratesReply(60, {{QStringLiteral("JPY"), -150}}))},
        BadReply{"TextRate",
                 LocalHttpServer::Reply::json(ratesReply(60, {{QStringLiteral("JPY"), QStringLiteral("150")}}))},
        BadReply{"ServerError", LocalHttpServer::Reply::json(ratesReply(60), 500)}, BadReply{"TimeOut", delayed(3s)},
        BadReply{"ClosedWithoutReply", LocalHttpServer::Reply::closing()}),
    [](const ::testing::TestParamInfo<BadReply> &info) { return std::string(info.param.name); });

TEST(ManualCurrencyRates, FormAcceptsCodeRatePairsButNeverTheDollar)
{
    for (const char *good : {"", "  ", "CAD:1.34", "CAD:1.34, NTD:30.230", "EUR:1,GBP:0.79 ", "cad:2"})
        EXPECT_TRUE(CurrencyRates::isValidManualRatesText(QString::fromUtf8(good))) << good;
    for (const char *bad : {"USD:1", "CAD:1.34, USD:1", "CAD=1.34", "CAD:", "CAD:1.", "C:1", "CAD:-1", "CAD:1;EUR:2"})
        EXPECT_FALSE(CurrencyRates::isValidManualRatesText(QString::fromUtf8(bad))) << bad;
    EXPECT_EQ(CurrencyRates::manualRatesValidationMessage(),
              u"Please enter valid currency rates in the format: 'CAD:1.34, NTD:30.230' (USD is not allowed as it's "
              u"defined as 1.0)");

    // Of a code given twice the later rate counts, in the place of the first.
    const auto manual = CurrencyRates::manualRates(QStringLiteral("CAD:1.3, EUR:0.9, CAD:1.4"));
    ASSERT_EQ(manual.size(), 2u);
    EXPECT_EQ(manual[0].currency, CurrencyUnit::cad);
    EXPECT_EQ(manual[0].conversionRate, 1.4);
    EXPECT_NE(manual[0].id, manual[1].id);
}

TEST(CurrencySetting, StoredTablesSurviveRowsThatCannotBeRead)
{
    const CurrencySetting cad = CurrencySetting::make(CurrencyUnit::cad, 1.36);
    const QJsonObject stored = cad.toJson();
    EXPECT_EQ(stored.value(QStringLiteral("currency")).toString(), u"CAD");
    EXPECT_EQ(stored.value(QStringLiteral("id")).toString(), cad.id.toString(QUuid::WithoutBraces).toUpper());

    const QString text = CurrencySetting::encodeList({cad, CurrencySetting::make(CurrencyUnit::_1inch, 2.5)});
    const auto back = CurrencySetting::decodeList(text);
    ASSERT_TRUE(back.has_value());
    ASSERT_EQ(back->size(), 2u);
    EXPECT_EQ(back->at(0), cad);
    EXPECT_EQ(currencyCode(back->at(1).currency), u"1INCH");

    const auto partly = CurrencySetting::decodeList(
        QStringLiteral(
            R"([{"id":"%1","currency":"OLD","conversionRate":2},{"id":"%1","currency":"CAD","conversionRate":1.3}])")
            .arg(QUuid::createUuid().toString(QUuid::WithoutBraces)));
    ASSERT_TRUE(partly.has_value());
    ASSERT_EQ(partly->size(), 1u);
    EXPECT_EQ(partly->at(0).currency, CurrencyUnit::cad);
    EXPECT_FALSE(CurrencySetting::decodeList(QStringLiteral("{not json")).has_value());
}

} // namespace
