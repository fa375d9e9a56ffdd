// LOCK: answered from the request alone. No lock is kept, and no other
// method consults one.
#include "server/webdav/dav_files.h"
#include "server/webdav/dav_response.h"
#include "server/webdav/dav_xml.h"
#include "store/log.h"

#include <QUuid>

namespace server {

namespace {

struct LockRequest
{
    QString scope;
    QString type;
    QString depth;
    QString owner;
    QString token;
};

QString firstChildName(xmlNodePtr node)
{
    return node && node->children ? localName(node->children) : QString();
}

QString ownerHref(xmlNodePtr lockinfo)
{
    xmlNodePtr href = childElement(childElement(lockinfo, "owner"), "href");
    if (!href || !href->children || !href->children->content)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char *>(href->children->content));
}

LockRequest readLockRequest(const DAVRequest &request)
{
    LockRequest lock;
    lock.depth = request.header(QStringLiteral("Depth"));
    const DAVXMLBody xml(request.body);
    if (xml.parsed()) {
        xmlNodePtr lockinfo = xml.topElement("lockinfo");
        if (!lockinfo) {
            tl::logLine(QStringLiteral("HTTP Server: Invalid DAV properties\n%1")
                            .arg(QString::fromUtf8(request.body)));
            return lock;
        }
        lock.scope = firstChildName(childElement(lockinfo, "lockscope"));
        lock.type = firstChildName(childElement(lockinfo, "locktype"));
        lock.owner = ownerHref(lockinfo);
        return lock;
    }
    // No body: the refresh of a lock the client holds.
    const QString condition = request.header(QStringLiteral("If"));
    if (!condition.isNull()) {
        qsizetype first = 0;
        qsizetype last = condition.size();
        const auto trimmed = [](QChar c) { return QStringLiteral("(<>)").contains(c); };
        while (first < last && trimmed(condition[first]))
            ++first;
        while (last > first && trimmed(condition[last - 1]))
            --last;
        lock.token = condition.mid(first, last - first);
        lock.scope = QStringLiteral("exclusive");
        lock.type = QStringLiteral("write");
        lock.depth = QStringLiteral("0");
    }
    return lock;
}

QByteArray xmlText(const QString &text)
{
    return text.toHtmlEscaped().toUtf8();
}

QByteArray lockDiscovery(const LockRequest &lock, const QString &timeout, const QString &lockRoot)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:prop xmlns:D=\"DAV:\">\n"
                     "<D:lockdiscovery>\n<D:activelock>\n";
    xml += "<D:locktype><D:" + xmlText(lock.type) + "/></D:locktype>\n";
    xml += "<D:lockscope><D:" + xmlText(lock.scope) + "/></D:lockscope>\n";
    xml += "<D:depth>" + xmlText(lock.depth) + "</D:depth>\n";
    if (!lock.owner.isEmpty())
        xml += "<D:owner><D:href>" + xmlText(lock.owner) + "</D:href></D:owner>\n";
    if (!timeout.isNull())
        xml += "<D:timeout>" + xmlText(timeout) + "</D:timeout>\n";
    xml += "<D:locktoken><D:href>" + xmlText(lock.token) + "</D:href></D:locktoken>\n";
    xml += "<D:lockroot><D:href>" + xmlText(lockRoot) + "</D:href></D:lockroot>\n";
    xml += "</D:activelock>\n</D:lockdiscovery>\n</D:prop>";
    return xml;
}

} // namespace

bool DAVResponse::lock(const DAVRequest &request)
{
    const QString path = request.filePath();
    if (!isBelowRoot(path, request.rootPath))
        return false;
    LockRequest lock = readLockRequest(request);
    const bool allowed = lock.scope == QLatin1String("exclusive") &&
                         lock.type == QLatin1String("write") && lock.depth == QLatin1String("0");
    if (!allowed || (!itemExistsAtPath(path) && !writeFileIntoExistingFolder(path, {}))) {
        tl::logLine(QStringLiteral("Locking request \"%1/%2/%3\" for \"%4\" is not allowed")
                        .arg(lock.scope, lock.type, lock.depth, path));
        m_status = 403;
        return true;
    }
    if (lock.token.isEmpty())
        lock.token = QStringLiteral("urn:uuid:") +
                     QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString lockRoot = QStringLiteral("http://") + request.header(QStringLiteral("Host")) +
                             QLatin1Char('/') + request.resourcePath;
    setXMLBody(lockDiscovery(lock, request.header(QStringLiteral("Timeout")), lockRoot));
    return true;
}

} // namespace server
