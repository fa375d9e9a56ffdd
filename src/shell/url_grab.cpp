#include "shell/url_grab.h"

#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/freedesktop_reminders.h"
#include "shell/url_actions.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/log.h"
#include "store/mime_types.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace tl::shell {

namespace {

int g_downloadsInFlight = 0;

QNetworkAccessManager &network()
{
    static QNetworkAccessManager *manager = new QNetworkAccessManager;
    return *manager;
}

// "Import Complete" on the desktop, withdrawn half a second later.
void announceImport(const QString &path)
{
    if (!platform::FreedesktopReminderCentre::available())
        return;
    static platform::FreedesktopReminderCentre *centre = new platform::FreedesktopReminderCentre;
    const store::ContextMenuLabel label = store::tl_pathFormattedForContextMenu(path, 1);
    platform::Reminder notice;
    notice.identifier = path;
    notice.title = QLatin1String(kImportComplete);
    notice.informativeText = label.faintPart + label.normalPart;
    notice.taskPath = path;
    notice.deliveryDate = clock().now();
    centre->setScheduled({notice});
    centre->deliverDue(notice.deliveryDate);
    Scheduler::main().schedule(QStringLiteral("withdraw import notice ") + path, 0.5,
                               [path] { centre->removeDelivered(path); });
}

void fileDownload(QNetworkReply *reply, const QString &book, const QString &title)
{
    if (reply->error() != QNetworkReply::NoError) {
        logLine(QStringLiteral("error: %1").arg(reply->errorString()));
        return;
    }
    const QByteArray data = reply->readAll();
    QString name = title;
    if (name.isEmpty())
        name = suggestedFileName(reply->rawHeader("Content-Disposition"));
    if (name.isEmpty())
        name = reply->url().fileName();
    if (name.isEmpty())
        name = reply->url().host();
    const QString mimeType =
        reply->header(QNetworkRequest::ContentTypeHeader).toString().section(u';', 0, 0).trimmed();
    const QString extension = store::tl_extensionForMimeType(mimeType.toLower());
    name = path::appendingExtension(path::deletingExtension(name), extension);
    const QString path = store::tl_uniqueNameForFileatPath(name, book);
    if (!store::tl_writeToFile(data, path, true))
        return;
    store::tl_setProperty(path, reply->request().url().toString(), QStringLiteral("URL"));
    store::tl_setCreationDate(path);
    announceImport(path);
}

} // namespace

int downloadsInFlight()
{
    return g_downloadsInFlight;
}

QString suggestedFileName(const QByteArray &contentDisposition)
{
    const QString header = QString::fromUtf8(contentDisposition);
    for (QString part : header.split(u';')) {
        part = part.trimmed();
        if (part.startsWith(u"filename*=", Qt::CaseInsensitive)) {
            // RFC 5987: charset'language'percent-encoded
            const QString value = part.mid(10).section(u'\'', 2);
            if (const auto decoded = store::percentDecoded(value); decoded && !decoded->isEmpty())
                return path::lastComponent(*decoded);
        }
    }
    for (QString part : header.split(u';')) {
        part = part.trimmed();
        if (part.startsWith(u"filename=", Qt::CaseInsensitive)) {
            QString value = part.mid(9).trimmed();
            if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
                value = value.mid(1, value.size() - 2);
            return path::lastComponent(value);
        }
    }
    return {};
}

void grabURL(const QUrl &url, const QString &book, const QString &title)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    ++g_downloadsInFlight;
    QNetworkReply *reply = network().get(request);
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, book, title] {
        fileDownload(reply, book, title);
        reply->deleteLater();
        --g_downloadsInFlight;
    });
}

} // namespace tl::shell
