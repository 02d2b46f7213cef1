#include "views/VoidView.h"

#include "notes/RelativeTimeText.h"
#include "notes/TrashManager.h"
#include "platform/Clock.h"
#include "views/MessageBoxAlerts.h"
#include "views/NoteRowDelegate.h"
#include "views/SearchSnippet.h"

#include <QHBoxLayout>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QToolButton>
#include <QVBoxLayout>

namespace scrivlet {

namespace {

// When a note drifted in, as its row says it: "Deleted 3 hours ago", "Deleted March 4".
QString deletedText(const std::optional<QDateTime> &deletedAt, const QDateTime &now)
{
    if (!deletedAt || !deletedAt->isValid())
        return QStringLiteral("Deleted");
    const QString when = RelativeTimeText::text(*deletedAt, now);
    const bool today = deletedAt->toLocalTime().date() == now.toLocalTime().date();
    return QStringLiteral("Deleted ") % when %
           (today && !when.endsWith(QStringLiteral("ago")) ? QStringLiteral(" ago") : QString());
}

} // namespace

VoidView::VoidView(CoreDataManager &store, CoreDataNotesManager &notes, NotificationBus &bus, Clock &clock,
                   QWidget *parent)
    : QWidget(parent), m_store(store), m_notes(notes), m_bus(bus), m_clock(clock),
      m_ownAlerts(std::make_unique<MessageBoxAlerts>(this)),
      m_theme(ThemePalette::builtIn(QStringLiteral("Vancouver"))), m_backButton(new QToolButton(this)),
      m_title(new QLabel(QStringLiteral("THE VOID"), this)), m_count(new QLabel(this)),
      m_emptyButton(new QPushButton(QStringLiteral("Empty The Void"), this)), m_pages(new QStackedWidget(this)),
      m_list(new QListView(m_pages)), m_model(new QStandardItemModel(this)), m_delegate(new NoteRowDelegate(m_list)),
      m_emptyTitle(new QLabel(QStringLiteral("The Void is empty"), m_pages)),
      m_emptyText(new QLabel(QStringLiteral("Deleted notes will drift here"), m_pages))
{
    setObjectName(QStringLiteral("voidView"));
    setAttribute(Qt::WA_StyledBackground);
    makeTrashManager(*m_ownAlerts);

    m_backButton->setObjectName(QStringLiteral("voidBack"));
    m_backButton->setText(QStringLiteral("\u2039 Back"));
    m_backButton->setToolTip(QStringLiteral("Back to the note (Esc)"));
    m_backButton->setCursor(Qt::PointingHandCursor);
    m_backButton->setFocusPolicy(Qt::NoFocus);
    connect(m_backButton, &QToolButton::clicked, this, &VoidView::closed);

    m_title->setObjectName(QStringLiteral("voidTitle"));
    m_count->setObjectName(QStringLiteral("voidCount"));
    m_emptyButton->setObjectName(QStringLiteral("voidEmpty"));
    m_emptyButton->setCursor(Qt::PointingHandCursor);
    m_emptyButton->setFocusPolicy(Qt::NoFocus);
    m_emptyButton->setToolTip(QStringLiteral("Delete every note in The Void for good"));
    connect(m_emptyButton, &QPushButton::clicked, this, &VoidView::emptyTheVoid);

    auto *header = new QHBoxLayout;
    header->setContentsMargins(10, 10, 14, 0);
    header->addWidget(m_backButton);
    header->addStretch();
    header->addWidget(m_emptyButton);

    auto *titles = new QVBoxLayout;
    titles->setContentsMargins(18, 6, 18, 10);
    titles->setSpacing(2);
    titles->addWidget(m_title);
    titles->addWidget(m_count);

    m_delegate->setActions({{QStringLiteral("Restore"), QStringLiteral("Restore from The Void"), false},
                            {QStringLiteral("Delete"), QStringLiteral("Delete from The Void"), true}});
    connect(m_delegate, &NoteRowDelegate::actionTriggered, this, [this](const QModelIndex &index, int action) {
        if (action == 0)
            restore(index.row());
        else
            deleteForGood(index.row());
    });
    m_list->setObjectName(QStringLiteral("voidList"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_delegate);
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setToolTip(QStringLiteral("Enter restores the selected note, Delete deletes it for good, Esc goes back"));
    m_list->installEventFilter(this);
    // With nothing to list, the view itself keeps the focus so Esc still goes back.
    setFocusPolicy(Qt::StrongFocus);

    auto *emptyPage = new QWidget(m_pages);
    auto *emptyLayout = new QVBoxLayout(emptyPage);
    emptyLayout->addStretch(2);
    m_emptyTitle->setObjectName(QStringLiteral("voidEmptyTitle"));
    m_emptyText->setObjectName(QStringLiteral("voidEmptyText"));
    m_emptyTitle->setAlignment(Qt::AlignCenter);
    m_emptyText->setAlignment(Qt::AlignCenter);
    m_emptyText->setWordWrap(true);
    emptyLayout->addWidget(m_emptyTitle);
    emptyLayout->addWidget(m_emptyText);
    emptyLayout->addStretch(3);
    m_pages->addWidget(m_list);
    m_pages->addWidget(emptyPage);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 6);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addLayout(titles);
    layout->addWidget(m_pages, 1);

    setTheme(m_theme);
    reload();
}

VoidView::~VoidView() = default;

void VoidView::makeTrashManager(Alerts &alerts)
{
    m_trash = std::make_unique<TrashManager>(m_store, m_unusedSettings, m_bus, alerts, m_clock);
}

void VoidView::setAlerts(Alerts &alerts)
{
    makeTrashManager(alerts);
}

void VoidView::setTheme(const ThemePalette &palette)
{
    m_theme = palette;
    m_delegate->setTheme(palette);
    const auto c = [&](const char *role) { return palette.color(QLatin1String(role)).name(QColor::HexArgb); };
    setStyleSheet(QStringLiteral("#voidView { background: %1; }"
                                 "#voidView QListView { background: %1; border: none; outline: none; }"
                                 "#voidBack { color: %2; background: transparent; border: none; padding: 4px 6px;"
                                 "  font-size: 13px; }"
                                 "#voidBack:hover { color: %3; }"
                                 "#voidTitle { color: %3; font-size: 12px; font-weight: 700; letter-spacing: 3px; }"
                                 "#voidCount { color: %4; font-size: 12px; }"
                                 "#voidEmpty { color: %5; background: transparent; border: 1px solid %6;"
                                 "  border-radius: 11px; padding: 3px 12px; font-size: 12px; font-weight: 600; }"
                                 "#voidEmpty:hover { background: %6; }"
                                 "#voidEmpty:disabled { color: %7; border-color: %8; }"
                                 "#voidEmptyTitle { color: %3; font-size: 15px; font-weight: 600; }"
                                 "#voidEmptyText { color: %4; font-size: 12px; }")
                      .arg(c("background"), c("typeSubtle"), c("typeMain"), c("typeSubtle"), c("accent3Main"),
                           c("accent3Secondary"), c("typeSuperlight"), c("typeHyperLight")));
    m_list->viewport()->update();
}

void VoidView::reload()
{
    const int previous = selectedRow();
    const QDateTime now = m_clock.now();
    const std::vector<Note> notes = m_trash->notes();
    m_model->clear();
    for (const Note &note : notes) {
        auto *item = new QStandardItem;
        const QString preview = SearchSnippet::make(note.content, std::nullopt).text;
        item->setData(preview.isEmpty() ? QStringLiteral("Empty note") : preview, NoteRowDelegate::TextRole);
        item->setData(deletedText(note.deletedAt, now), NoteRowDelegate::TimeRole);
        item->setData(note.id, NoteRowDelegate::IdRole);
        item->setEditable(false);
        m_model->appendRow(item);
    }
    const int count = int(notes.size());
    m_count->setText(TrashManager::lostSouls(count));
    m_emptyButton->setEnabled(count > 0);
    m_pages->setCurrentIndex(count > 0 ? 0 : 1);
    if (count > 0)
        selectRow(std::clamp(previous, 0, count - 1));
}

int VoidView::rowCount() const
{
    return m_model->rowCount();
}

QUuid VoidView::idAt(int row) const
{
    return m_model->index(row, 0).data(NoteRowDelegate::IdRole).toUuid();
}

QString VoidView::textAt(int row) const
{
    return m_model->index(row, 0).data(NoteRowDelegate::TextRole).toString();
}

QString VoidView::timeAt(int row) const
{
    return m_model->index(row, 0).data(NoteRowDelegate::TimeRole).toString();
}

QString VoidView::countText() const
{
    return m_count->text();
}

bool VoidView::isShowingEmptyState() const
{
    return m_pages->currentIndex() == 1;
}

int VoidView::selectedRow() const
{
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? current.row() : 0;
}

void VoidView::selectRow(int row)
{
    const QModelIndex index = m_model->index(row, 0);
    if (index.isValid())
        m_list->setCurrentIndex(index);
}

void VoidView::restore(int row)
{
    const QUuid id = idAt(row);
    if (id.isNull())
        return;
    m_trash->restore(id);
    reload();
}

void VoidView::deleteForGood(int row)
{
    const QUuid id = idAt(row);
    if (id.isNull())
        return;
    if (m_trash->deletePermanently(id))
        reload();
}

void VoidView::emptyTheVoid()
{
    if (m_trash->emptyFromView())
        reload();
}

bool VoidView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        switch (key->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (m_list->currentIndex().isValid())
                restore(m_list->currentIndex().row());
            return true;
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            if (m_list->currentIndex().isValid())
                deleteForGood(m_list->currentIndex().row());
            return true;
        case Qt::Key_Escape:
            emit closed();
            return true;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void VoidView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        emit closed();
        return;
    }
    QWidget::keyPressEvent(event);
}

void VoidView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    // The keys act on the list whenever it has rows to act on.
    if (!isShowingEmptyState())
        m_list->setFocus(event->reason());
}

void VoidView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // The relative times move on while the view is hidden.
    reload();
    if (isShowingEmptyState())
        setFocus();
    else
        m_list->setFocus();
}

} // namespace scrivlet
