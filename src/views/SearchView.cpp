#include "views/SearchView.h"

#include "views/NoteRowDelegate.h"
#include "views/SearchResultsModel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QToolButton>
#include <QVBoxLayout>

namespace scrivlet {

SearchView::SearchView(CoreDataNotesManager &notes, Clock &clock, QWidget *parent)
    : QWidget(parent), m_notes(notes), m_clock(clock), m_theme(ThemePalette::builtIn(QStringLiteral("Vancouver"))),
      m_backButton(new QToolButton(this)), m_field(new QLineEdit(this)), m_status(new QLabel(this)),
      m_list(new QListView(this)), m_model(new SearchResultsModel(notes, clock, this)),
      m_delegate(new NoteRowDelegate(m_list))
{
    setObjectName(QStringLiteral("searchView"));
    setAttribute(Qt::WA_StyledBackground);

    m_backButton->setObjectName(QStringLiteral("searchBack"));
    m_backButton->setText(QStringLiteral("\u2039"));
    m_backButton->setToolTip(QStringLiteral("Back to the note (Esc)"));
    m_backButton->setCursor(Qt::PointingHandCursor);
    m_backButton->setFocusPolicy(Qt::NoFocus);
    connect(m_backButton, &QToolButton::clicked, this, &SearchView::closed);

    m_field->setObjectName(QStringLiteral("searchField"));
    m_field->setPlaceholderText(QStringLiteral("Search notes"));
    m_field->setClearButtonEnabled(true);
    m_field->setToolTip(QStringLiteral("Up and Down pick a note, Enter opens it, Esc goes back"));
    m_field->installEventFilter(this);
    connect(m_field, &QLineEdit::textChanged, m_model, &SearchResultsModel::search);
    setFocusProxy(m_field);

    m_status->setObjectName(QStringLiteral("searchStatus"));

    m_list->setObjectName(QStringLiteral("searchList"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_delegate);
    // Every row is as tall as the next, so a list of a hundred thousand hits lays out
    // without measuring them.
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setFocusPolicy(Qt::NoFocus);
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex &index) { choose(index.row()); });

    connect(m_model, &SearchResultsModel::restarted, this, [this] {
        if (m_model->rowCount() > 0)
            m_list->setCurrentIndex(m_model->index(0, 0));
        m_list->scrollToTop();
        updateStatus();
    });
    connect(m_model, &SearchResultsModel::grew, this, [this] {
        if (!m_list->currentIndex().isValid() && m_model->rowCount() > 0)
            m_list->setCurrentIndex(m_model->index(0, 0));
        updateStatus();
    });

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(10, 10, 14, 6);
    bar->setSpacing(6);
    bar->addWidget(m_backButton);
    bar->addWidget(m_field, 1);

    auto *status = new QHBoxLayout;
    status->setContentsMargins(18, 0, 18, 6);
    status->addWidget(m_status);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 6);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addLayout(status);
    layout->addWidget(m_list, 1);

    setTheme(m_theme);
}

SearchView::~SearchView() = default;

void SearchView::activate()
{
    {
        const QSignalBlocker quiet(m_field);
        m_field->clear();
    }
    m_model->search(QString());
    m_field->setFocus(Qt::ShortcutFocusReason);
}

void SearchView::setTheme(const ThemePalette &palette)
{
    m_theme = palette;
    m_delegate->setTheme(palette);
    const auto c = [&](const char *role) { return palette.color(QLatin1String(role)).name(QColor::HexArgb); };
    setStyleSheet(QStringLiteral("#searchView { background: %1; }"
                                 "#searchView QListView { background: %1; border: none; outline: none; }"
                                 "#searchBack { color: %2; background: transparent; border: none; padding: 2px 6px;"
                                 "  font-size: 20px; }"
                                 "#searchBack:hover { color: %3; }"
                                 "#searchField { color: %3; background: %4; border: 1px solid %5; border-radius: 9px;"
                                 "  padding: 5px 10px; font-size: 14px; selection-background-color: %6; }"
                                 "#searchField:focus { border-color: %7; }"
                                 "#searchStatus { color: %2; font-size: 11px; }")
                      .arg(c("background"), c("typeSubtle"), c("typeMain"), c("backgroundFade"), c("typeHyperLight"),
                           c("accent1Tertiary"), c("accent1Secondary")));
    m_list->viewport()->update();
}

QString SearchView::statusText() const
{
    return m_status->text();
}

void SearchView::updateStatus()
{
    const int count = m_model->rowCount();
    if (!m_model->isComplete())
        m_status->setText(count == 0 ? QStringLiteral("Searching\u2026")
                                     : QStringLiteral("%1 found so far\u2026").arg(count));
    else if (count == 0)
        m_status->setText(QStringLiteral("No notes found"));
    else
        m_status->setText(count == 1 ? QStringLiteral("1 note") : QStringLiteral("%1 notes").arg(count));
}

void SearchView::choose(int row)
{
    const QUuid id = m_model->index(row, 0).data(NoteRowDelegate::IdRole).toUuid();
    if (!id.isNull())
        emit resultChosen(id);
}

void SearchView::moveSelection(int by)
{
    const int count = m_model->rowCount();
    if (count == 0)
        return;
    const QModelIndex current = m_list->currentIndex();
    const int row = std::clamp(current.isValid() ? current.row() + by : 0, 0, count - 1);
    m_list->setCurrentIndex(m_model->index(row, 0));
    m_list->scrollTo(m_list->currentIndex());
}

bool SearchView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const int page = std::max(1, m_list->viewport()->height() / std::max(1, m_list->sizeHintForRow(0)) - 1);
        switch (key->key()) {
        case Qt::Key_Down:
            moveSelection(1);
            return true;
        case Qt::Key_Up:
            moveSelection(-1);
            return true;
        case Qt::Key_PageDown:
            moveSelection(page);
            return true;
        case Qt::Key_PageUp:
            moveSelection(-page);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (m_list->currentIndex().isValid())
                choose(m_list->currentIndex().row());
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

void SearchView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        emit closed();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace scrivlet
