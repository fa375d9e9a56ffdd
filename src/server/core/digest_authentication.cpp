// Digest authentication and the recent nonces it checks against; the Basic
// branch stays for a connection that turns digest off.
#include "foundation/clock.h"
#include "server/core/http_authentication_request.h"
#include "server/core/http_connection.h"

#include <QCryptographicHash>
#include <QUuid>
#include <deque>
#include <mutex>
#include <unordered_map>

namespace server {

namespace {

// Recent nonces, shared by all connections. A nonce lives kNonceLifetime
// seconds from its making; at most kMostNonces are kept, the oldest going first.
class NonceStore
{
public:
    static constexpr size_t kMostNonces = 65536;

    QString make()
    {
        const QString nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        std::lock_guard lock(m_mutex);
        const double now = tl::clock().monotonicSeconds();
        prune(now);
        m_order.push_back({nonce, now});
        m_made.emplace(nonce, now);
        while (m_order.size() > kMostNonces) {
            m_made.erase(m_order.front().first);
            m_order.pop_front();
        }
        return nonce;
    }

    bool contains(const QString &nonce)
    {
        std::lock_guard lock(m_mutex);
        const double now = tl::clock().monotonicSeconds();
        prune(now);
        // The age is checked here too: pruning stops at the first young
        // nonce, and a clock set by a test need not run forward.
        const auto found = m_made.find(nonce);
        return found != m_made.end() && isYoung(found->second, now);
    }

private:
    static bool isYoung(double made, double now)
    {
        return now - made < HTTPConnection::kNonceLifetime;
    }

    void prune(double now)
    {
        while (!m_order.empty() && !isYoung(m_order.front().second, now)) {
            m_made.erase(m_order.front().first);
            m_order.pop_front();
        }
    }

    std::mutex m_mutex;
    std::deque<std::pair<QString, double>> m_order;
    std::unordered_map<QString, double> m_made;
};

NonceStore &nonceStore()
{
    static NonceStore store;
    return store;
}

QString md5Hex(const QString &text)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

} // namespace

QString HTTPConnection::generateNonce()
{
    return nonceStore().make();
}

bool HTTPConnection::hasRecentNonce(const QString &nonce)
{
    return nonceStore().contains(nonce);
}

bool HTTPConnection::isAuthenticated()
{
    if (useDigestAccessAuthentication()) {
        const HTTPAuthenticationRequest auth(*m_request);
        if (!auth.isDigest() || auth.username().isNull())
            return false;
        const auto password = passwordForUser(auth.username());
        if (!password)
            return false;
        if (auth.uri().isNull() || requestURI() != auth.uri())
            return false;
        if (auth.nonce().isNull() || auth.nc().isNull() || auth.cnonce().isNull() ||
            auth.qop().isNull() || auth.response().isNull() || auth.realm().isNull())
            return false;
        // A nonce must be one the server made: the connection's first holds none.
        if (m_nonce.isEmpty() || m_nonce != auth.nonce()) {
            if (!hasRecentNonce(auth.nonce()))
                return false;
            m_nonce = auth.nonce();
            m_lastNC = 0;
        }
        const auto nc = parseHex64(auth.nc());
        if (!nc || *nc <= m_lastNC)
            return false;
        m_lastNC = *nc;

        const QString ha1 = md5Hex(auth.username() + QLatin1Char(':') + auth.realm() +
                                   QLatin1Char(':') + *password);
        const QString ha2 = md5Hex(m_request->method() + QLatin1Char(':') + auth.uri());
        const QString expected = md5Hex(ha1 + QLatin1Char(':') + auth.nonce() + QLatin1Char(':') +
                                        auth.nc() + QLatin1Char(':') + auth.cnonce() +
                                        QLatin1Char(':') + auth.qop() + QLatin1Char(':') + ha2);
        return expected == auth.response();
    }

    const HTTPAuthenticationRequest auth(*m_request);
    if (!auth.isBasic())
        return false;
    const auto decoded = QByteArray::fromBase64Encoding(auth.base64Credentials().toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return false;
    const QString credentials = QString::fromUtf8(*decoded);
    const qsizetype colon = credentials.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return false;
    const auto password = passwordForUser(credentials.left(colon));
    return password && *password == credentials.mid(colon + 1);
}

void HTTPConnection::handleAuthenticationFailed(bool unreadBody)
{
    HTTPMessage response(401, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    // A body left unread cannot be told from the next request.
    if (unreadBody)
        response.setHeaderField(QStringLiteral("Connection"), QStringLiteral("close"));
    if (useDigestAccessAuthentication()) {
        response.setHeaderField(QStringLiteral("WWW-Authenticate"),
                                QStringLiteral("Digest realm=\"%1\", qop=\"auth\", nonce=\"%2\"")
                                    .arg(realm(), generateNonce()));
    } else {
        response.setHeaderField(QStringLiteral("WWW-Authenticate"),
                                QStringLiteral("Basic realm=\"%1\"").arg(realm()));
    }
    sendErrorResponse(response, unreadBody ? kTagFinalResponse : kTagResponse);
}

} // namespace server
