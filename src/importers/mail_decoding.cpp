#include "importers/mail_decoding.h"

#include "foundation/regex.h"

#include <QStringDecoder>

namespace tl::importers {

namespace {

QString withoutSoftLineEnds(QString text)
{
    text.remove(QStringLiteral("=\r\n"));
    text.remove(QStringLiteral("=\n"));
    return text;
}

// The text as percent escapes once "%" is kept as "=25" and "=" stands for
// "%": every escape must be complete, and the bytes UTF-8. This one step
// decodes multi-byte characters whole.
std::optional<QString> percentDecoded(const QString &text)
{
    static const Regex incompleteEscape(QStringLiteral("%(?![0-9a-fA-F]{2})"));
    QString escaped = text;
    escaped.replace(u'%', QStringLiteral("=25"));
    escaped.replace(u'=', u'%');
    if (escaped.endsWith(u'%'))
        escaped.chop(1);
    if (incompleteEscape.isMatch(escaped))
        return std::nullopt;
    return strictUtf8(QByteArray::fromPercentEncoding(escaped.toUtf8()));
}

} // namespace

std::optional<QString> strictUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QString stringWithQuotedPrintableString(const QString &text)
{
    if (const std::optional<QString> decoded = percentDecoded(withoutSoftLineEnds(text)))
        return *decoded;
    static const Regex code(QStringLiteral("=([0-9a-fA-F]{2})"));
    const QString bytewise = code.replaceMatches(text, [](const RegexMatch &m, QStringView in) {
        return std::optional<QString>(QChar(m.captured(in, 1).toUShort(nullptr, 16)));
    });
    return withoutSoftLineEnds(bytewise);
}

QByteArray dataWithBase64Encoding(const QString &text)
{
    return QByteArray::fromBase64(text.trimmed().toLatin1());
}

QString stringWithBase64Encoding(const QString &text)
{
    return strictUtf8(dataWithBase64Encoding(text)).value_or(QString());
}

QString stringWithEncodedWordsString(const QString &text)
{
    static const Regex word(QStringLiteral(R"(=\?(.+?)\?(.)\?(.+?)\?=)"));
    QString result = text;
    result.remove(QStringLiteral("\r\n "));
    qsizetype from = 0;
    while (const std::optional<RegexMatch> m = word.match(result, from)) {
        const QString encoded = m->capturedString(result, 3);
        QString decoded = m->captured(result, 2) == u"Q" ? stringWithQuotedPrintableString(encoded)
                                                         : stringWithBase64Encoding(encoded);
        decoded.replace(u'_', u' ');
        result.replace(m->start(), m->length(), decoded);
        from = m->start() + decoded.size();
    }
    return result;
}

} // namespace tl::importers
