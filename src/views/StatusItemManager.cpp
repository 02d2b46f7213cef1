#include "views/StatusItemManager.h"

#include "views/MainWindowPresenter.h"
#include "views/PopoverWindow.h"

#include <QAction>
#include <QIcon>
#include <QLoggingCategory>
#include <QMenu>
#include <QPainter>
#include <QPixmap>

namespace scrivlet {

namespace {

Q_LOGGING_CATEGORY(lcTray, "scrivlet.tray")

QString rawName(AppIconPreference mode)
{
    switch (mode) {
    case AppIconPreference::dockOnly:
        return QStringLiteral("dockOnly");
    case AppIconPreference::menuOnly:
        return QStringLiteral("menuOnly");
    case AppIconPreference::both:
        return QStringLiteral("both");
    case AppIconPreference::neither:
        return QStringLiteral("neither");
    case AppIconPreference::trueMenuApp:
        return QStringLiteral("trueMenuApp");
    }
    return {};
}

// The small notepad of the tray, drawn in one colour so that light and dark panels
// alike can tint it. Drawn by hand when the desktop's Qt can't read SVG.
QIcon trayGlyph()
{
    QIcon icon(QStringLiteral(":/icons/scrivlet-tray.svg"));
    if (icon.pixmap(22, 22).isNull()) {
        QPixmap pixmap(22, 22);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::black, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawRoundedRect(QRectF(4, 3.5, 14, 16), 2, 2);
        painter.drawLine(QPointF(7.5, 8.5), QPointF(14.5, 8.5));
        painter.drawLine(QPointF(7.5, 11.5), QPointF(14.5, 11.5));
        painter.drawLine(QPointF(7.5, 14.5), QPointF(11.5, 14.5));
        painter.end();
        icon = QIcon(pixmap);
    }
    icon.setIsMask(true);
    return icon;
}

} // namespace

StatusItemManager::StatusItemManager(AppIconPreference wanted, bool trayAvailable, MainWindowPresenter &presenter,
                                     Hooks hooks, QObject *parent)
    : QObject(parent), m_wanted(wanted), m_mode(presentedMode(wanted, trayAvailable)), m_presenter(presenter),
      m_hooks(std::move(hooks))
{
    if (m_mode != m_wanted) {
        const QString why = QStringLiteral("This desktop has no system tray for Scrivlet's item (appIconPreference "
                                           "\"%1\"); the main window shows at start instead and closing it quits.");
        qCWarning(lcTray).noquote() << why.arg(rawName(m_wanted));
    }
    m_presenter.setAppIconPreference(m_mode);
    if (!needsStatusItem(m_mode))
        return;

    buildMenu();
    m_tray = std::make_unique<QSystemTrayIcon>(trayGlyph());
    m_tray->setToolTip(QStringLiteral("Scrivlet"));
    m_tray->setContextMenu(m_menu.get());
    connect(m_tray.get(), &QSystemTrayIcon::activated, this, &StatusItemManager::onActivated);
    m_tray->show();
}

StatusItemManager::~StatusItemManager()
{
    if (m_popover)
        m_presenter.setPopover(nullptr);
}

bool StatusItemManager::isTrayAvailable()
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

AppIconPreference StatusItemManager::presentedMode(AppIconPreference wanted, bool trayAvailable)
{
    if (trayAvailable || !needsStatusItem(wanted))
        return wanted;
    return AppIconPreference::dockOnly;
}

bool StatusItemManager::needsStatusItem(AppIconPreference mode)
{
    return mode == AppIconPreference::menuOnly || mode == AppIconPreference::both ||
           mode == AppIconPreference::trueMenuApp;
}

void StatusItemManager::onActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::Trigger)
        click();
    else if (reason == QSystemTrayIcon::Context)
        updateMenu();
}

void StatusItemManager::click()
{
    toggle();
}

void StatusItemManager::toggle()
{
    if (m_mode == AppIconPreference::trueMenuApp)
        ensurePopover().toggleNextTo(iconGeometry());
    else
        m_presenter.toggleMainWindow();
    updateMenu();
}

void StatusItemManager::show()
{
    if (m_mode == AppIconPreference::trueMenuApp)
        ensurePopover().openNextTo(iconGeometry());
    else
        m_presenter.showMainWindow();
    updateMenu();
}

void StatusItemManager::refreshHotKeyStatus()
{
    updateMenu();
}

PopoverWindow &StatusItemManager::ensurePopover()
{
    if (!m_popover) {
        m_popover = m_hooks.makePopover();
        Q_ASSERT(m_popover);
        m_presenter.setPopover(m_popover.get());
    }
    return *m_popover;
}

QRect StatusItemManager::iconGeometry() const
{
    return m_tray ? m_tray->geometry() : QRect();
}

void StatusItemManager::buildMenu()
{
    m_menu = std::make_unique<QMenu>();
    m_showHide = m_menu->addAction(QStringLiteral("Show Scrivlet"), this, &StatusItemManager::toggle);
    m_pin = m_menu->addAction(QStringLiteral("Pin to Top"), this, [this] {
        m_presenter.togglePin();
        updateMenu();
    });
    m_pin->setCheckable(true);
    m_menu->addSeparator();
    m_hotKeyLine = m_menu->addAction(QString());
    m_hotKeyLine->setEnabled(false);
    m_menu->addSeparator();
    m_menu->addAction(QStringLiteral("Quit Scrivlet"), this, [this] {
        if (m_hooks.quit)
            m_hooks.quit();
    });
    // The menu says what the window is doing as it opens, not what it did at start.
    connect(m_menu.get(), &QMenu::aboutToShow, this, &StatusItemManager::updateMenu);
    updateMenu();
}

void StatusItemManager::updateMenu()
{
    if (!m_menu)
        return;
    const bool shown =
        m_mode == AppIconPreference::trueMenuApp ? m_popover && m_popover->isOpen() : m_presenter.isMainWindowVisible();
    m_showHide->setText(shown ? QStringLiteral("Hide Scrivlet") : QStringLiteral("Show Scrivlet"));
    m_pin->setChecked(m_presenter.isPinned());
    const QString hotKey = m_hooks.hotKeyStatus ? m_hooks.hotKeyStatus() : QString();
    m_hotKeyLine->setText(hotKey);
    m_hotKeyLine->setVisible(!hotKey.isEmpty());
}

} // namespace scrivlet
