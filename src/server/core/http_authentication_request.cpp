#include "server/core/http_authentication_request.h"

#include "server/core/http_message.h"

#include <map>

namespace server {

HTTPAuthenticationRequest::HTTPAuthenticationRequest(const HTTPMessage &request)
{
    parse(request.headerField(QStringLiteral("Authorization")));
}

HTTPAuthenticationRequest::HTTPAuthenticationRequest(const QString &authorization) { parse(authorization); }

void HTTPAuthenticationRequest::parse(const QString &authorization)
{
    if (authorization.isEmpty())
        return;
    m_isBasic = authorization.startsWith(QLatin1String("Basic "), Qt::CaseInsensitive);
    m_isDigest = authorization.startsWith(QLatin1String("Digest "), Qt::CaseInsensitive);
    if (m_isBasic) {
        m_base64Credentials = authorization.mid(6).trimmed();
    } else if (m_isDigest && !parseDigestParameters(QStringView(authorization).mid(7))) {
        m_username = m_realm = m_nonce = m_uri = m_qop = m_nc = m_cnonce = m_response = QString();
    }
}

namespace {

bool isTokenChar(QChar c)
{
    const ushort u = c.unicode();
    if (u >= 128)
        return false;
    if ((u >= '0' && u <= '9') || (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z'))
        return true;
    switch (u) {
    case '!': case '#': case '$': case '%': case '&': case '\'': case '*': case '+':
    case '-': case '.': case '^': case '_': case '`': case '|': case '~':
        return true;
    default:
        return false;
    }
}

// Token68 values may also carry "/" and "=" (base64); accept them in plain values.
bool isPlainValueChar(QChar c) { return isTokenChar(c) || c == QLatin1Char('/') || c == QLatin1Char('='); }

bool isBlank(QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); }

} // namespace

bool HTTPAuthenticationRequest::parseDigestParameters(QStringView text)
{
    std::map<QString, QString> parameters;
    qsizetype i = 0;
    const qsizetype n = text.size();
    auto skipBlanks = [&] {
        while (i < n && isBlank(text[i]))
            ++i;
    };
    bool expectParameter = true;
    for (;;) {
        skipBlanks();
        if (i == n)
            break;
        if (text[i] == QLatin1Char(',')) {
            // Empty list elements are allowed.
            ++i;
            expectParameter = true;
            continue;
        }
        if (!expectParameter)
            return false;
        const qsizetype nameStart = i;
        while (i < n && isTokenChar(text[i]))
            ++i;
        if (i == nameStart)
            return false;
        const QString name = text.mid(nameStart, i - nameStart).toString().toLower();
        skipBlanks();
        if (i == n || text[i] != QLatin1Char('='))
            return false;
        ++i;
        skipBlanks();
        QString value;
        if (i < n && text[i] == QLatin1Char('"')) {
            ++i;
            bool closed = false;
            value = QLatin1String("");
            while (i < n) {
                const QChar c = text[i++];
                if (c == QLatin1Char('"')) {
                    closed = true;
                    break;
                }
                if (c == QLatin1Char('\\')) {
                    if (i == n)
                        return false;
                    value += text[i++];
                    continue;
                }
                value += c;
            }
            if (!closed)
                return false;
        } else {
            const qsizetype valueStart = i;
            while (i < n && isPlainValueChar(text[i]))
                ++i;
            if (i == valueStart)
                return false;
            value = text.mid(valueStart, i - valueStart).toString();
        }
        if (!parameters.emplace(name, value).second)
            return false;
        expectParameter = false;
    }
    auto take = [&](const char *name) {
        const auto found = parameters.find(QLatin1String(name));
        return found == parameters.end() ? QString() : found->second;
    };
    m_username = take("username");
    m_realm = take("realm");
    m_nonce = take("nonce");
    m_uri = take("uri");
    m_qop = take("qop");
    m_nc = take("nc");
    m_cnonce = take("cnonce");
    m_response = take("response");
    return true;
}

} // namespace server
