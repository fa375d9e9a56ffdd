#include "convert/convert_keys.h"
#include "convert/markdown_preparation.h"
#include "convert/multimarkdown.h"
#include "importers/mail_decoding.h"
#include "importers/mail_message.h"
#include "platform/settings.h"

namespace tl::importers {

namespace {

// The look of a mail body; the markers are the viewer's to fill.
constexpr char kMailStyle[] = "<style type=\"text/css\">\n"
                              "\tbody { -webkit-text-size-adjust: none; }\n"
                              "\thr { height: 1px; background-color: #ddd; border-width: 0; }\n"
                              "\tblockquote { margin: 2em 2em 2em 0em; padding: 0 .75em 0 1.25em; "
                              "border-left: 1px solid #ccc; color: #555; }\n"
                              "\tpre { white-space: pre-wrap; }\n"
                              "\timg { max-width: 100%; height: auto; }\n"
                              "\ta { color: #0645ad; }\n"
                              "</style>\n";

// Text that was UTF-8 read as Latin-1 once too often, read back.
QString withoutDoubleEncoding(const QString &text)
{
    for (const QChar c : text)
        if (c.unicode() > 0xFF)
            return text;
    const std::optional<QString> repaired = strictUtf8(text.toLatin1());
    return repaired && !repaired->isEmpty() && repaired->size() < text.size() ? *repaired : text;
}

} // namespace

QString wrapTextInHTML(const QString &text)
{
    return QStringLiteral("<html>\n<head>\n"
                          "<meta name=\"viewport\" content=\"initial-scale=1.0, "
                          "maximum-scale=1.0, user-scalable=no\">\n"
                          "<meta http-equiv=\"Content-Type\" content=\"text/html; "
                          "charset=utf-8\" />\n") +
           QLatin1String(kMailStyle) +
           QStringLiteral("</head>\n<body style=\"font-family:**TavelleFont**; padding: "
                          "**BodyPadding**%; color:black; font-size:**TavelleFontSize**px;\">\n") +
           text + QStringLiteral("\n</body>\n</html>");
}

QString convertToHTML(const QString &text)
{
    QString markdown = text;
    if (platform::settings().boolValue(QLatin1String(convert::keys::IgnoreCommentsForWordCount)))
        markdown = convert::tl_stringByRemovingComments(markdown);
    return convert::tl_multiMarkdownWithPath(withoutDoubleEncoding(markdown), QString());
}

} // namespace tl::importers
