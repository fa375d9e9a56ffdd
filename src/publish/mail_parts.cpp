#include "publish/mail_parts.h"

#include "convert/envelope.h"
#include "foundation/regex.h"
#include "store/document_file.h"
#include "store/log.h"
#include "store/text_conversions.h"

namespace tl::publish {

namespace {

QByteArray quotedPrintableDecoded(const QString &text)
{
    static const Regex softBreak(QStringLiteral("=\r?\n"));
    const QByteArray in = softBreak.replaceAll(text, QString()).toUtf8();
    QByteArray out;
    out.reserve(in.size());
    for (qsizetype i = 0; i < in.size(); ++i) {
        bool hex = false;
        const int value = i + 2 < in.size() && in[i] == '=' ? in.mid(i + 1, 2).toInt(&hex, 16) : 0;
        if (hex) {
            out += char(value);
            i += 2;
        } else {
            out += in[i];
        }
    }
    return out;
}

} // namespace

std::optional<QString> htmlPartOfMessage(const QString &message)
{
    static const Regex htmlType(QStringLiteral(R"(^Content-Type:\s*text/html)"),
                                RegexOption::AnchorsMatchLines | RegexOption::CaseInsensitive);
    static const Regex headersEnd(QStringLiteral("\r?\n\r?\n"));
    static const Regex encoding(QStringLiteral(R"(^Content-Transfer-Encoding:\s*(\S+))"),
                                RegexOption::AnchorsMatchLines | RegexOption::CaseInsensitive);
    static const Regex boundary(QStringLiteral("^--"), RegexOption::AnchorsMatchLines);
    const std::optional<RegexMatch> type = htmlType.match(message);
    if (!type)
        return std::nullopt;
    const std::optional<RegexMatch> end = headersEnd.match(message, type->start());
    if (!end)
        return std::nullopt;
    const QString headers = message.mid(type->start(), end->start() - type->start());
    const std::optional<RegexMatch> next = boundary.match(message, end->end());
    const QString body = message.mid(end->end(), next ? next->start() - end->end() : -1);
    const std::optional<RegexMatch> transfer = encoding.match(headers);
    const QString kind = transfer ? transfer->capturedString(headers, 1).toLower() : QString();
    if (kind == u"quoted-printable")
        return QString::fromUtf8(quotedPrintableDecoded(body));
    if (kind == u"base64")
        return QString::fromUtf8(QByteArray::fromBase64(body.toLatin1()));
    return body;
}

std::optional<QString> mailBody(const QString &path)
{
    QString html = store::tl_emlToHTML(path);
    if (html.isEmpty()) {
        const std::optional<store::DecodedText> message = store::tl_stringWithContentsOfFile(path);
        html = message ? htmlPartOfMessage(message->text).value_or(QString()) : QString();
    }
    if (html.isEmpty()) {
        logLine(
            QStringLiteral("publishing: leaving out the mail message without HTML %1").arg(path));
        return std::nullopt;
    }
    return convert::tl_getInnerHTML(html);
}

} // namespace tl::publish
