#include "outline_pane.h"

#include "action_registry.h"
#include "browser/event_bridge.h"
#include "browser/outline_controller.h"
#include "browser/smart_books.h"
#include "contexts_menu.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "item_delegate.h"
#include "store/library_root.h"

#include <QHeaderView>
#include <QMenu>
#include <QTreeView>
#include <QVBoxLayout>

namespace tl::app {

using browser::OutlineModel;

namespace {

void post(const char *name, const QVariantMap &payload)
{
    NotificationCenter::defaultCenter().post(QLatin1String(name), payload);
}

} // namespace

OutlinePane::OutlinePane(browser::TLKSOutlineViewController &controller,
                         browser::EventBridge &bridge, const ActionRegistry &actions,
                         QWidget *parent)
    : QWidget(parent), m_controller(controller), m_view(new QTreeView(this))
{
    setObjectName(QStringLiteral("outline"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    m_view->setObjectName(QStringLiteral("outlineView"));
    m_view->setModel(&controller.model());
    m_view->setItemDelegate(new OutlineDelegate(m_view));
    m_view->setHeaderHidden(true);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setUniformRowHeights(true);
    m_view->setIconSize(QSize(18, 18));
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setDragDropMode(QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setDropIndicatorShown(true);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->setAutoFillBackground(true);
    m_view->setBackgroundRole(QPalette::Window);

    connect(m_view, &QTreeView::expanded, this, [this](const QModelIndex &index) {
        if (!m_restoring)
            m_controller.setExpanded(m_controller.model().itemForIndex(index), true);
    });
    connect(m_view, &QTreeView::collapsed, this, [this](const QModelIndex &index) {
        if (!m_restoring)
            m_controller.setExpanded(m_controller.model().itemForIndex(index), false);
    });
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!m_silent)
            postSelection();
        Q_EMIT selectionChanged();
    });
    connect(m_view, &QWidget::customContextMenuRequested, this, [this, &actions](QPoint at) {
        QMenu menu(m_view);
        const QModelIndex index = m_view->indexAt(at);
        if (index.data(OutlineModel::SmartTypeRole).toInt() == browser::Context) {
            addContextRowActions(&menu, index.data(OutlineModel::PathRole).toString());
        } else {
            actions.fillItemMenu(&menu);
            if (selectedIsBook())
                addContextsMenu(&menu, {selectedPath()});
        }
        menu.exec(m_view->viewport()->mapToGlobal(at));
    });
    connect(&bridge, &browser::EventBridge::newRootSelected, this, &OutlinePane::newRootSelected);
    connect(&bridge, &browser::EventBridge::newBookSelected, this,
            &OutlinePane::followSelectedBook);
    connect(&controller.model(), &QAbstractItemModel::modelReset, this,
            &OutlinePane::expandSavedPaths);
}

void OutlinePane::newRootSelected()
{
    m_controller.newRootSelected();
    expandSavedPaths();
}

void OutlinePane::expandSavedPaths()
{
    OutlineModel &model = m_controller.model();
    m_restoring = true;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex group = model.index(row, 0);
        m_view->setExpanded(group, m_controller.isExpanded(model.itemForIndex(group)));
    }
    for (const QString &path : m_controller.tl_expandSavedPaths())
        m_view->expand(model.indexForPath(path));
    const QModelIndex smartBooks = model.index(0, 0);
    m_view->setExpanded(smartBooks, m_controller.isExpanded(model.itemForIndex(smartBooks)));
    m_restoring = false;
}

void OutlinePane::selectBook(const QString &path)
{
    OutlineModel &model = m_controller.model();
    const QString root = store::libraryRoot();
    // Parents open first, so the book's row exists.
    QStringList chain;
    for (QString p = path::deletingLastComponent(path);
         p.size() > root.size() && p.startsWith(root); p = path::deletingLastComponent(p))
        chain.prepend(p);
    for (const QString &parent : chain)
        m_view->expand(model.indexForPath(parent));
    const QModelIndex index = model.indexForPath(path);
    if (!index.isValid() || m_view->currentIndex() == index)
        return;
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
}

void OutlinePane::followSelectedBook(const QString &path, int smartType)
{
    OutlineModel &model = m_controller.model();
    if (smartType != browser::SearchResults) {
        // Another book shows: the search is over. Its row goes quietly, so
        // the selection sliding to a neighbour selects nothing.
        m_silent = true;
        m_controller.showSearchResultsBook(false);
        m_silent = false;
    }
    const QModelIndex index =
        smartType > 1 ? model.smartBookIndex(smartType) : model.indexForPath(path);
    if (!index.isValid() || m_view->currentIndex() == index)
        return;
    m_silent = true;
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
    m_silent = false;
}

void OutlinePane::showSearchResults(bool shown, const QString &book)
{
    if (shown) {
        m_controller.showSearchResultsBook(true);
        followSelectedBook({}, browser::SearchResults);
    } else {
        followSelectedBook(book, browser::OrdinaryBook);
    }
}

QString OutlinePane::selectedPath() const
{
    return m_view->currentIndex().data(OutlineModel::PathRole).toString();
}

bool OutlinePane::selectedIsBook() const
{
    const QModelIndex index = m_view->currentIndex();
    return index.isValid() && index.data(OutlineModel::GroupRole).toInt() != 1 &&
           index.data(OutlineModel::SmartTypeRole).toInt() == 0 &&
           !index.data(OutlineModel::IsDocumentRole).toBool();
}

void OutlinePane::postSelection()
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    if (rows.size() != 1)
        return;
    const QModelIndex index = rows.first();
    if (index.data(OutlineModel::GroupRole).toInt() == 1)
        return;
    const QString path = index.data(OutlineModel::PathRole).toString();
    m_controller.selectedBookPath = path;
    if (index.data(OutlineModel::IsDocumentRole).toBool())
        post(events::NewDocumentSelected, {{"path", path}});
    else
        post(events::NewBookSelected,
             {{"path", path}, {"smartType", index.data(OutlineModel::SmartTypeRole).toInt()}});
    post(events::ItemsSelectedInOutlineOrList, {{"paths", QStringList{path}}});
}

} // namespace tl::app
