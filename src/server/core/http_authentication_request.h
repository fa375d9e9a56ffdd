#pragma once

#include <QString>

namespace server {

class HTTPMessage;

// The "Authorization" header of a request, read for Basic or Digest.
//
// Digest parameters are read by name at parameter boundaries: a
// comma-separated list of name=value pairs, each value a token or a quoted
// string, with blanks allowed around "=" and ",". So qop="auth" and qop=auth
// read alike, and text inside a quoted value is never taken for a parameter.
// A header that does not have this form, or names a parameter twice, gives no
// parameters at all.
class HTTPAuthenticationRequest
{
public:
    explicit HTTPAuthenticationRequest(const HTTPMessage &request);
    explicit HTTPAuthenticationRequest(const QString &authorization);

    bool isBasic() const { return m_isBasic; }
    bool isDigest() const { return m_isDigest; }

    // Basic: the encoded credentials after "Basic ".
    const QString &base64Credentials() const { return m_base64Credentials; }

    // Digest parameters; null when absent.
    const QString &username() const { return m_username; }
    const QString &realm() const { return m_realm; }
    const QString &nonce() const { return m_nonce; }
    const QString &uri() const { return m_uri; }
    const QString &qop() const { return m_qop; }
    const QString &nc() const { return m_nc; }
    const QString &cnonce() const { return m_cnonce; }
    const QString &response() const { return m_response; }

private:
    void parse(const QString &authorization);
    bool parseDigestParameters(QStringView text);

    bool m_isBasic = false;
    bool m_isDigest = false;
    QString m_base64Credentials;
    QString m_username;
    QString m_realm;
    QString m_nonce;
    QString m_uri;
    QString m_qop;
    QString m_nc;
    QString m_cnonce;
    QString m_response;
};

} // namespace server
