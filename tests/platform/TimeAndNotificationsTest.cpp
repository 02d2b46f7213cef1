#include "platform/Debouncer.h"
#include "platform/ManualClock.h"
#include "platform/NotificationBus.h"

#include <gtest/gtest.h>

using namespace scrivlet;
using namespace std::chrono_literals;

TEST(ManualClock, RunsDueTimersInOrderAndSetsTheTimeTheyFireAt)
{
    ManualClock clock;
    const QDateTime start = clock.now();
    QStringList fired;
    clock.schedule(300ms, [&] { fired << QStringLiteral("b@%1").arg(start.msecsTo(clock.now())); });
    clock.schedule(100ms, [&] {
        fired << QStringLiteral("a@%1").arg(start.msecsTo(clock.now()));
        // A timer scheduled while firing runs in the same advance when it falls due.
        clock.schedule(50ms, [&] { fired << QStringLiteral("c@%1").arg(start.msecsTo(clock.now())); });
    });
    const auto cancelled = clock.schedule(200ms, [&] { fired << QStringLiteral("never"); });
    clock.cancel(cancelled);

    clock.advance(250ms);
    EXPECT_EQ(fired, (QStringList{QStringLiteral("a@100"), QStringLiteral("c@150")}));
    EXPECT_EQ(start.msecsTo(clock.now()), 250);
    clock.advance(1s);
    EXPECT_EQ(fired.last(), QStringLiteral("b@300"));
    EXPECT_EQ(clock.pendingCount(), 0u);
}

TEST(Debouncer, RunsOnlyTheLastWorkAfterQuiet)
{
    ManualClock clock;
    Debouncer debouncer(clock, 1000ms);
    QStringList runs;
    debouncer.call([&] { runs << QStringLiteral("first"); });
    clock.advance(900ms);
    debouncer.call([&] { runs << QStringLiteral("second"); });
    clock.advance(900ms);
    EXPECT_TRUE(runs.isEmpty());
    clock.advance(100ms);
    EXPECT_EQ(runs, QStringList{QStringLiteral("second")});

    debouncer.call([&] { runs << QStringLiteral("flushed"); });
    debouncer.flush();
    EXPECT_EQ(runs.last(), QStringLiteral("flushed"));
    clock.advance(5s);
    EXPECT_EQ(runs.size(), 2); // flushed work doesn't run a second time

    debouncer.call([&] { runs << QStringLiteral("cancelled"); });
    debouncer.cancel();
    clock.advance(5s);
    EXPECT_EQ(runs.size(), 2);
}

TEST(NotificationBus, DeliversByNameAndStopsWhenTheSubscriptionGoes)
{
    NotificationBus bus;
    QStringList heard;
    auto a = bus.subscribe(QStringLiteral("saveCurrentNote"), [&](const QVariantMap &) { heard << QStringLiteral("a"); });
    {
        auto b = bus.subscribe(QStringLiteral("saveCurrentNote"),
                               [&](const QVariantMap &p) { heard << p.value(QStringLiteral("k")).toString(); });
        bus.post(QStringLiteral("saveCurrentNote"), {{QStringLiteral("k"), QStringLiteral("b")}});
        bus.post(QStringLiteral("refetchNotes"));
    }
    bus.post(QStringLiteral("saveCurrentNote"));
    EXPECT_EQ(heard, (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a")}));

    // A handler that ends another's subscription mid-delivery: the other isn't called.
    NotificationBus::Subscription second;
    auto first = bus.subscribe(QStringLiteral("x"), [&](const QVariantMap &) { second.reset(); });
    second = bus.subscribe(QStringLiteral("x"), [&](const QVariantMap &) { heard << QStringLiteral("late"); });
    bus.post(QStringLiteral("x"));
    EXPECT_FALSE(heard.contains(QStringLiteral("late")));

    QVariantMap pill;
    auto pills = bus.subscribe(QStringLiteral("MessagePillNotification"), [&](const QVariantMap &p) { pill = p; });
    bus.postMessagePill(QStringLiteral("Copied all to clipboard"), QStringLiteral("success"));
    EXPECT_EQ(pill.value(QStringLiteral("message")).toString(), QStringLiteral("Copied all to clipboard"));
    EXPECT_EQ(pill.value(QStringLiteral("type")).toString(), QStringLiteral("success"));
}
