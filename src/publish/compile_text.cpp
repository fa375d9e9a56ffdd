#include "publish/compile_text.h"

#include "convert/envelope.h"
#include "foundation/regex.h"

#include <QHash>

namespace tl::publish {

QString compiledHTMLHead(const QString &title, const QString &styleSheet)
{
    return QStringLiteral(
               "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
               "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n"
               "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n"
               "  <!-- Generator: %1 -->\n"
               "  <meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\" />\n"
               "  <meta name=\"viewport\" content=\"initial-scale=1.0, user-scalable=no\" />\n"
               "  <title>%2</title>\n")
               .arg(convert::generatorName(), title) +
           styleSheet + QStringLiteral("\n</head>\n<body>\n");
}

QString compiledHTMLTail()
{
    return QStringLiteral("</body>\n</html>");
}

QString compiledEntry(const QString &text)
{
    return text + QStringLiteral("\n\n\n");
}

QString compiledImageLine(const QString &name)
{
    return QStringLiteral("\n<img src=\"TLImages/%1\" class=\"fullscreen\" />\n").arg(name);
}

QString renumberedImageReferences(const QString &text, int &count)
{
    static const Regex definition(QStringLiteral(R"(\[tli(\d+)\]: )"),
                                  RegexOption::CaseInsensitive);
    static const Regex reference(QStringLiteral(R"(\[TLI(\d+)\])"));
    QHash<QString, int> renumbered;
    for (const RegexMatch &match : definition.allMatches(text)) {
        const QString number = match.capturedString(text, 1);
        if (!renumbered.contains(number))
            renumbered.insert(number, count + int(renumbered.size()) + 1);
    }
    if (renumbered.isEmpty())
        return text;
    count += int(renumbered.size());
    // All at once, so a new number is never taken for an old one.
    return reference.replaceMatches(text, [&](const RegexMatch &match, QStringView in) {
        const auto it = renumbered.constFind(match.capturedString(in, 1));
        return it == renumbered.cend() ? std::nullopt
                                       : std::optional(QStringLiteral("[TLI%1]").arg(*it));
    });
}

QString webLinkEntry(const QString &url, const QString &name, const QString &outputExtension)
{
    if (outputExtension == u"html")
        return QStringLiteral("<br/><a href=\"%1\">%2</a><br/>").arg(url, name);
    if (outputExtension == u"md")
        return QStringLiteral("[%1](%2)").arg(name, url);
    return url;
}

} // namespace tl::publish
