#include "views/MessageBoxAlerts.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>

namespace scrivlet {

Alerts::Response MessageBoxAlerts::ask(const Request &request)
{
    QMessageBox box(m_parent);
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(request.title);
    box.setText(request.title);
    box.setInformativeText(request.text);
    QList<QPushButton *> buttons;
    for (qsizetype i = 0; i < request.buttons.size(); ++i) {
        const QMessageBox::ButtonRole role = i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
        buttons.push_back(box.addButton(request.buttons[i], role));
    }
    if (!buttons.isEmpty())
        box.setDefaultButton(buttons.front());
    if (buttons.size() >= 2)
        box.setEscapeButton(buttons.back());
    QCheckBox *suppression = nullptr;
    if (request.suppressionTitle) {
        suppression = new QCheckBox(*request.suppressionTitle, &box);
        box.setCheckBox(suppression);
    }
    box.exec();

    Response response;
    response.button = int(buttons.indexOf(qobject_cast<QPushButton *>(box.clickedButton())));
    response.suppressionChecked = suppression && suppression->isChecked();
    return response;
}

} // namespace scrivlet
