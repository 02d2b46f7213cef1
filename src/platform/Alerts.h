#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace scrivlet {

// Modal confirmations: a title, a text, buttons in the order they are shown (the first
// is the default action) and an optional "don't ask again" box. The core asks and
// reads the answer; how the question is drawn is the platform's.
class Alerts {
public:
    struct Request {
        QString title;
        QString text;
        QStringList buttons;
        // The box's title; no box when absent.
        std::optional<QString> suppressionTitle;
    };

    struct Response {
        // Index into `Request::buttons`; -1 when the alert was dismissed without a choice.
        int button = -1;
        bool suppressionChecked = false;
    };

    virtual ~Alerts() = default;
    virtual Response ask(const Request &request) = 0;
};

} // namespace scrivlet
