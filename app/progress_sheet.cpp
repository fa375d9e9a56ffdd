#include "progress_sheet.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"

#include <QProgressDialog>

namespace tl::app {

QProgressDialog *openProgressSheet(QWidget *window, const QString &title, const QString &label,
                                   const QString &button, int maximum)
{
    auto *sheet = new QProgressDialog(label, button, 0, maximum, window);
    sheet->setWindowTitle(title);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setAutoClose(false);
    sheet->setAutoReset(false);
    sheet->setMinimumDuration(0);
    sheet->setMinimumWidth(360);
    sheet->setValue(0);
    return sheet;
}

void showMadeDocument(const QString &path)
{
    if (path.isEmpty())
        return;
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.post(QLatin1String(events::FileModifiedOnDisk), {{QStringLiteral("path"), path}});
    center.post(QLatin1String(events::ShowItemAtPath), {{QStringLiteral("path"), path}});
}

} // namespace tl::app
