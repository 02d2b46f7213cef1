#include "platform/SystemClock.h"

#include <QTimer>

namespace scrivlet {

SystemClock::~SystemClock()
{
    qDeleteAll(m_timers);
}

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTimeUtc();
}

Clock::TimerId SystemClock::schedule(std::chrono::milliseconds delay, std::function<void()> work)
{
    const TimerId id = m_nextId++;
    auto *timer = new QTimer;
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [this, id, work = std::move(work)] {
        if (QTimer *t = m_timers.take(id))
            t->deleteLater();
        work();
    });
    m_timers.insert(id, timer);
    timer->start(delay);
    return id;
}

void SystemClock::cancel(TimerId id)
{
    if (QTimer *timer = m_timers.take(id)) {
        timer->stop();
        timer->deleteLater();
    }
}

} // namespace scrivlet
