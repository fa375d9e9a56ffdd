#include "document/backlinks_list.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "links/backlinks.h"
#include "store/library_root.h"

namespace tl::app {

BacklinksList::BacklinksList(QWidget *parent) : QListWidget(parent)
{
    setObjectName(QStringLiteral("backlinks"));
    setMaximumHeight(fontMetrics().height() * 5);
    setToolTip(QStringLiteral("Documents linking to this document"));
    hide();
    connect(this, &QListWidget::itemActivated, this, [](QListWidgetItem *item) {
        NotificationCenter::defaultCenter().post(
            QLatin1String(events::ShowItemAtPath),
            {{QStringLiteral("path"), store::libraryRoot() + item->data(Qt::UserRole).toString()}});
    });
}

void BacklinksList::follow(const QString &document)
{
    clear();
    const QStringList backlinks = document.isEmpty() ? QStringList() : links::backlinksOf(document);
    for (const QString &backlink : backlinks) {
        auto *item =
            new QListWidgetItem(path::deletingExtension(path::lastComponent(backlink)), this);
        item->setData(Qt::UserRole, backlink);
        item->setToolTip(backlink);
    }
    setVisible(!backlinks.isEmpty());
}

} // namespace tl::app
