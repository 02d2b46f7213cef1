#include "platform/Debouncer.h"

namespace scrivlet {

void Debouncer::call(std::function<void()> work)
{
    cancel();
    m_work = std::move(work);
    m_pending = m_clock.schedule(m_delay, [this] {
        m_pending = 0;
        auto work = std::move(m_work);
        m_work = nullptr;
        if (work)
            work();
    });
}

void Debouncer::cancel()
{
    if (m_pending != 0)
        m_clock.cancel(m_pending);
    m_pending = 0;
    m_work = nullptr;
}

void Debouncer::flush()
{
    if (m_pending == 0)
        return;
    m_clock.cancel(m_pending);
    m_pending = 0;
    auto work = std::move(m_work);
    m_work = nullptr;
    if (work)
        work();
}

} // namespace scrivlet
