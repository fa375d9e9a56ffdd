// libFuzzer target: the "Authorization" header reader. A header that
// parses must give back the same parameters when written out again.
#include "server/core/http_authentication_request.h"

#include <QStringList>

#include <cstddef>
#include <cstdint>

namespace {
QString quoted(const QString &value)
{
    QString out = QStringLiteral("\"");
    for (QChar c : value) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            out += QLatin1Char('\\');
        out += c;
    }
    return out + QLatin1Char('"');
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString header = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const server::HTTPAuthenticationRequest auth(header);
    if (auth.isBasic() && auth.isDigest())
        __builtin_trap();
    if (!auth.isDigest() || auth.username().isNull())
        return 0;
    QStringList parts;
    const std::pair<const char *, QString> fields[] = {
        {"username", auth.username()}, {"realm", auth.realm()}, {"nonce", auth.nonce()},   {"uri", auth.uri()},
        {"qop", auth.qop()},           {"nc", auth.nc()},       {"cnonce", auth.cnonce()}, {"response", auth.response()},
    };
    for (const auto &[name, value] : fields)
        if (!value.isNull())
            parts << QLatin1String(name) + QLatin1Char('=') + quoted(value);
    const server::HTTPAuthenticationRequest again(QStringLiteral("Digest ") + parts.join(QStringLiteral(", ")));
    for (const auto &[name, value] : fields) {
        const server::HTTPAuthenticationRequest &a = again;
        const QString got = QString(name) == "username" ? a.username()
                            : QString(name) == "realm"  ? a.realm()
                            : QString(name) == "nonce"  ? a.nonce()
                            : QString(name) == "uri"    ? a.uri()
                            : QString(name) == "qop"    ? a.qop()
                            : QString(name) == "nc"     ? a.nc()
                            : QString(name) == "cnonce" ? a.cnonce()
                                                        : a.response();
        if (got != value)
            __builtin_trap();
    }
    return 0;
}
