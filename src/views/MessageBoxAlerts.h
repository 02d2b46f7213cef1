#pragma once

#include "platform/Alerts.h"

class QWidget;

namespace scrivlet {

// The core's confirmations as the desktop's own message boxes, modal over `parent`.
// The first button is the default; Esc answers with the last one when there are two
// or more (it is the "Cancel" of every question the app asks), and otherwise closes
// without a choice.
class MessageBoxAlerts final : public Alerts {
public:
    explicit MessageBoxAlerts(QWidget *parent = nullptr) : m_parent(parent) {}

    Response ask(const Request &request) override;

private:
    QWidget *m_parent;
};

} // namespace scrivlet
