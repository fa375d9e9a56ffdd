#include "document_list_pane.h"

#include "action_registry.h"
#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "browser/item_drops.h"
#include "browser/outline_model.h"
#include "browser/search_field.h"
#include "contexts_menu.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "list_delegate.h"
#include "recent_searches_menu.h"
#include "search_options_panel.h"
#include "store/library_root.h"
#include "tasks/task_list.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QToolButton>
#include <QVBoxLayout>

namespace tl::app {

using browser::DocumentListModel;

namespace {

void post(const char *name, const QVariantMap &payload)
{
    NotificationCenter::defaultCenter().post(QLatin1String(name), payload);
}

// The sort menu's entries by the index the list controller takes.
struct SortEntry
{
    int index;
    const char *title;
};
constexpr SortEntry kSortEntries[] = {{0, "Title"},  {1, "Created"},   {2, "Modified"},
                                      {3, "Custom"}, {5, "Ascending"}, {6, "Descending"}};

} // namespace

DocumentListView::DocumentListView(browser::OutlineModel &outline, QWidget *parent)
    : QListView(parent), m_outline(outline)
{
}

void DocumentListView::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool onMark = event->button() == Qt::LeftButton && index.isValid() &&
                        !index.data(DocumentListModel::TaskIconRole).toString().isEmpty() &&
                        ListDelegate::iconRect(visualRect(index))
                            .adjusted(-4, -4, 4, 4)
                            .contains(event->position().toPoint());
    if (!onMark) {
        QListView::mousePressEvent(event);
        return;
    }
    // The mark is a control of its own: the selection stays as it was.
    event->accept();
    Q_EMIT taskMarkClicked(index.data(DocumentListModel::PathRole).toString());
}

bool DocumentListView::goesIntoBook(const QDropEvent *event) const
{
    // Rows of this list dropped on it are a reordering; anything else moves
    // or copies into the book.
    return event->source() != this && !shownBook.isEmpty() &&
           browser::canDropOnBook(event->mimeData());
}

void DocumentListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (goesIntoBook(event)) {
        event->acceptProposedAction();
        return;
    }
    QListView::dragEnterEvent(event);
}

void DocumentListView::dragMoveEvent(QDragMoveEvent *event)
{
    if (goesIntoBook(event)) {
        event->acceptProposedAction();
        return;
    }
    QListView::dragMoveEvent(event);
}

void DocumentListView::dropEvent(QDropEvent *event)
{
    if (!goesIntoBook(event)) {
        QListView::dropEvent(event);
        return;
    }
    // The outline's drop on the shown book does the moving and copying.
    const QModelIndex book = m_outline.indexForPath(shownBook);
    if (book.isValid() &&
        m_outline.dropMimeData(event->mimeData(), event->dropAction(), -1, 0, book))
        event->acceptProposedAction();
    else
        event->ignore();
}

DocumentListPane::DocumentListPane(browser::DocumentListModel &model,
                                   browser::OutlineModel &outline, browser::EventBridge &bridge,
                                   const ActionRegistry &actions, QWidget *parent)
    : QWidget(parent), m_model(model), m_view(new DocumentListView(outline, this)),
      m_filter(new QLineEdit(this)), m_sort(new QToolButton(this)), m_empty(new QLabel(this)),
      m_search(new browser::SearchFieldController(model, this)),
      m_searchOptions(new SearchOptionsPanel(*m_search, this)), m_searchTitle(new QLabel(this))
{
    setObjectName(QStringLiteral("documentListPane"));
    m_filter->setPlaceholderText(QStringLiteral("Filter"));
    m_filter->setClearButtonEnabled(true);
    // The glass opens and closes the search options.
    QAction *options = m_filter->addAction(QIcon::fromTheme(QStringLiteral("edit-find")),
                                           QLineEdit::LeadingPosition);
    options->setToolTip(QStringLiteral("Search Options"));
    connect(options, &QAction::triggered, m_search,
            &browser::SearchFieldController::tl_toggleSearchStack);
    addRecentSearches(m_filter, *m_search);
    m_sort->setPopupMode(QToolButton::InstantPopup);
    m_sort->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto *sortMenu = new QMenu(m_sort);
    for (const SortEntry &entry : kSortEntries) {
        if (entry.index == 5)
            sortMenu->addSeparator();
        sortMenu->addAction(QString::fromLatin1(entry.title), this, [this, entry] {
            m_model.list().selectSortOrder(entry.index);
            updateSortButton();
        });
    }
    m_sort->setMenu(sortMenu);

    m_view->setObjectName(QStringLiteral("documentList"));
    m_view->setModel(&model);
    m_view->setItemDelegate(new ListDelegate(m_view));
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setDragDropMode(QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setDropIndicatorShown(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->setUniformItemSizes(false);

    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_empty->setEnabled(false);

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(6, 6, 6, 6);
    bar->addWidget(m_filter, 1);
    bar->addWidget(m_sort);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_searchOptions);
    m_searchTitle->setContentsMargins(8, 0, 8, 4);
    m_searchTitle->hide();
    layout->addWidget(m_searchTitle);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_empty, 1);

    connect(m_view, &DocumentListView::taskMarkClicked, this,
            [](const QString &path) { tasks::tl_toggleTask(path); });
    connect(m_filter, &QLineEdit::textChanged, m_search, [this](const QString &text) {
        if (!m_settingField)
            m_search->searchFieldDidChange(text);
    });
    connect(m_filter, &QLineEdit::returnPressed, m_search,
            [this] { m_search->runSearchFor(m_filter->text()); });
    connect(m_search, &browser::SearchFieldController::fieldTextChanged, this,
            &DocumentListPane::setFieldTextQuietly);
    connect(m_search, &browser::SearchFieldController::titleChanged, this,
            [this](const QString &title) {
                m_searchTitle->setText(title);
                m_searchTitle->setVisible(!title.isEmpty());
            });
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        QStringList rows;
        for (const QModelIndex &index : m_view->selectionModel()->selectedRows())
            rows << index.data(DocumentListModel::PathRole).toString();
        if (std::exchange(m_selectedRows, rows) == rows)
            return;
        if (!m_silent)
            handleSelection();
        Q_EMIT selectionChanged();
    });
    connect(m_view, &QWidget::customContextMenuRequested, this, [this, &actions](QPoint at) {
        QMenu menu(m_view);
        actions.fillItemMenu(&menu);
        addContextsMenu(&menu, selectedPaths());
        menu.exec(m_view->viewport()->mapToGlobal(at));
    });
    const auto listChanged = [this] {
        updateSortButton();
        updateEmptyText();
        applyPendingSelection();
    };
    connect(&model, &QAbstractItemModel::modelReset, this, listChanged);
    connect(&model, &QAbstractItemModel::layoutChanged, this, listChanged);
    connect(&model, &QAbstractItemModel::rowsInserted, this, [this] {
        updateEmptyText();
        applyPendingSelection();
    });
    connect(&model, &QAbstractItemModel::rowsRemoved, this, &DocumentListPane::updateEmptyText);
    connect(&model, &DocumentListModel::emptyListTextChanged, this,
            &DocumentListPane::updateEmptyText);
    connect(&bridge, &browser::EventBridge::newBookSelected, this,
            [this] { setFieldTextQuietly({}); });
    updateSortButton();
    updateEmptyText();
}

void DocumentListPane::setFieldTextQuietly(const QString &text)
{
    // Not by blocking the field's signals: its clear button follows them.
    m_settingField = true;
    m_filter->setText(text);
    m_settingField = false;
}

QStringList DocumentListPane::selectedPaths() const
{
    QStringList paths;
    for (const QModelIndex &index : m_view->selectionModel()->selectedRows())
        if (!index.data(DocumentListModel::IsHeaderRole).toBool() &&
            index.data(DocumentListModel::SmartTypeRole).toInt() == 0)
            paths << index.data(DocumentListModel::PathRole).toString();
    return paths;
}

bool DocumentListPane::selectedIsDocument() const
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    return rows.size() == 1 && !rows.first().data(DocumentListModel::IsHeaderRole).toBool() &&
           !rows.first().data(DocumentListModel::IsBookRole).toBool() &&
           rows.first().data(DocumentListModel::SmartTypeRole).toInt() == 0;
}

QString DocumentListPane::shownBook() const
{
    return m_model.list().path;
}

bool DocumentListPane::showsPlainBook() const
{
    return m_model.list().smartBookType == 0 && !m_model.list().path.isEmpty();
}

void DocumentListPane::selectSilently(const QString &path)
{
    m_pendingSelection = path;
    applyPendingSelection();
}

void DocumentListPane::applyPendingSelection()
{
    m_view->shownBook = showsPlainBook() ? shownBook() : QString();
    if (m_pendingSelection.isEmpty())
        return;
    const QModelIndex index = m_model.indexForPath(m_pendingSelection);
    if (!index.isValid())
        return;
    m_pendingSelection.clear();
    m_silent = true;
    // The row alone, whatever modifier keys are still held (a paste's Ctrl).
    m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                         QItemSelectionModel::Rows);
    m_view->scrollTo(index);
    m_silent = false;
}

void DocumentListPane::handleSelection()
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    if (rows.size() == 1) {
        const QModelIndex row = rows.first();
        const QString path = row.data(DocumentListModel::PathRole).toString();
        const int smartType = row.data(DocumentListModel::SmartTypeRole).toInt();
        if (row.data(DocumentListModel::IsHeaderRole).toBool())
            return;
        if (smartType != 0) {
            post(events::NewBookSelected, {{"path", path}, {"smartType", smartType}});
        } else if (row.data(DocumentListModel::IsBookRole).toBool()) {
            post(events::NewBookSelected, {{"path", path}});
            post(events::ShowItemAtPath, {{"path", path}});
        } else {
            post(events::NewDocumentSelected,
                 {{"path", path},
                  {"searchkey", m_model.list().smartBookType == 2 ? m_filter->text() : QString()}});
        }
    }
    const QStringList paths = selectedPaths();
    if (!paths.isEmpty())
        post(events::ItemsSelectedInOutlineOrList, {{"paths", paths}});
}

void DocumentListPane::updateSortButton()
{
    m_sort->setVisible(m_model.list().sortControlIsVisible());
    m_sort->setText(m_model.list().sortButtonLabel());
}

void DocumentListPane::updateEmptyText()
{
    const QString text = m_model.rowCount() == 0 ? m_model.list().emptyListText() : QString();
    m_empty->setText(text);
    m_empty->setVisible(!text.isEmpty());
    m_view->setVisible(text.isEmpty());
}

} // namespace tl::app
