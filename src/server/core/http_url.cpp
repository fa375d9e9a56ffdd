#include "server/core/http_url.h"

#include <QStringList>
#include <QStringDecoder>

namespace server {

URLParts splitURL(const QString &url)
{
    URLParts parts;
    qsizetype i = 0;
    const qsizetype n = url.size();

    // scheme: a letter, then letters, digits, "+", "-", "." up to ":" before any "/?#".
    qsizetype j = 0;
    while (j < n) {
        const QChar c = url[j];
        if (c == QLatin1Char(':') || c == QLatin1Char('/') || c == QLatin1Char('?') || c == QLatin1Char('#'))
            break;
        ++j;
    }
    if (j > 0 && j < n && url[j] == QLatin1Char(':')) {
        bool valid = url[0].isLetter() && url[0].unicode() < 128;
        for (qsizetype k = 1; valid && k < j; ++k) {
            const QChar c = url[k];
            valid = c.unicode() < 128 && (c.isLetterOrNumber() || c == QLatin1Char('+') ||
                                          c == QLatin1Char('-') || c == QLatin1Char('.'));
        }
        if (valid) {
            parts.scheme = url.left(j);
            i = j + 1;
        }
    }
    if (url.mid(i, 2) == QLatin1String("//")) {
        qsizetype end = i + 2;
        while (end < n && url[end] != QLatin1Char('/') && url[end] != QLatin1Char('?') &&
               url[end] != QLatin1Char('#'))
            ++end;
        parts.authority = url.mid(i + 2, end - i - 2);
        if (parts.authority.isNull())
            parts.authority = QLatin1String("");
        i = end;
    }
    qsizetype end = i;
    while (end < n && url[end] != QLatin1Char('?') && url[end] != QLatin1Char('#'))
        ++end;
    parts.path = url.mid(i, end - i);
    if (parts.path.isNull())
        parts.path = QLatin1String("");
    i = end;
    if (i < n && url[i] == QLatin1Char('?')) {
        end = i + 1;
        while (end < n && url[end] != QLatin1Char('#'))
            ++end;
        parts.query = url.mid(i + 1, end - i - 1);
        if (parts.query.isNull())
            parts.query = QLatin1String("");
        i = end;
    }
    if (i < n && url[i] == QLatin1Char('#')) {
        parts.fragment = url.mid(i + 1);
        if (parts.fragment.isNull())
            parts.fragment = QLatin1String("");
    }
    return parts;
}

namespace {
int hexValue(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}
} // namespace

std::optional<QString> percentDecode(const QString &text)
{
    if (!text.contains(QLatin1Char('%'))) {
        if (text.contains(QChar(0)))
            return std::nullopt;
        return text.isNull() ? QString(QLatin1String("")) : text;
    }
    const QByteArray utf8 = text.toUtf8();
    QByteArray bytes;
    bytes.reserve(utf8.size());
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const char c = utf8[i];
        if (c != '%') {
            bytes += c;
            continue;
        }
        if (i + 2 >= utf8.size())
            return std::nullopt;
        const int hi = hexValue(QLatin1Char(utf8[i + 1]));
        const int lo = hexValue(QLatin1Char(utf8[i + 2]));
        if (hi < 0 || lo < 0)
            return std::nullopt;
        bytes += char(hi * 16 + lo);
        i += 2;
    }
    if (bytes.contains('\0'))
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    if (decoded.isNull())
        decoded = QLatin1String("");
    return decoded;
}

std::optional<QString> urlRelativePath(const QString &url)
{
    auto path = percentDecode(splitURL(url).path);
    if (!path)
        return std::nullopt;
    while (path->size() > 1 && path->endsWith(QLatin1Char('/')))
        path->chop(1);
    return path;
}

QString appendPathComponent(const QString &path, const QString &component)
{
    if (component.isEmpty())
        return path;
    if (path.isEmpty())
        return component;
    const bool slashAtEnd = path.endsWith(QLatin1Char('/'));
    const bool slashAtStart = component.startsWith(QLatin1Char('/'));
    if (slashAtEnd && slashAtStart)
        return path + component.mid(1);
    if (slashAtEnd || slashAtStart)
        return path + component;
    return path + QLatin1Char('/') + component;
}

QString standardizePath(const QString &path)
{
    if (path.isEmpty())
        return path;
    const bool absolute = path.startsWith(QLatin1Char('/'));
    QStringList kept;
    for (const QString &component : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (component == QLatin1String("."))
            continue;
        if (component == QLatin1String("..")) {
            if (!kept.isEmpty() && kept.last() != QLatin1String(".."))
                kept.removeLast();
            else if (!absolute)
                kept.append(component);
            continue;
        }
        kept.append(component);
    }
    const QString joined = kept.join(QLatin1Char('/'));
    if (absolute)
        return QLatin1Char('/') + joined;
    return joined.isEmpty() ? QStringLiteral(".") : joined;
}

} // namespace server
