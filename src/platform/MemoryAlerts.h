#pragma once

#include "platform/Alerts.h"

#include <deque>
#include <vector>

namespace scrivlet {

// Alerts answered from a queue, for tests and headless runs: every question is
// recorded, and an alert with no answer queued is dismissed.
class MemoryAlerts final : public Alerts {
public:
    Response ask(const Request &request) override;

    void queueAnswer(int button, bool suppressionChecked = false);
    const std::vector<Request> &asked() const { return m_asked; }
    void clear();

private:
    std::deque<Response> m_answers;
    std::vector<Request> m_asked;
};

} // namespace scrivlet
