#include "platform/MemoryAlerts.h"

namespace scrivlet {

Alerts::Response MemoryAlerts::ask(const Request &request)
{
    m_asked.push_back(request);
    if (m_answers.empty())
        return Response{};
    const Response answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

void MemoryAlerts::queueAnswer(int button, bool suppressionChecked)
{
    m_answers.push_back(Response{button, suppressionChecked});
}

void MemoryAlerts::clear()
{
    m_answers.clear();
    m_asked.clear();
}

} // namespace scrivlet
