#include "convert/envelope.h"
#include "convert/html_to_text.h"
#include "convert/markdown_to_html.h"
#include "foundation/regex.h"
#include "store/document_file.h"
#include "store/extensions.h"

namespace tl::convert {

namespace {

QString htmlOfDocument(const QString &path)
{
    static const QStringList markdown{"md", "markdown", "text", "mdown", "rmd"};
    const QString extension = store::lowerCasedExtension(path);
    if (extension.startsWith(QStringLiteral("htm"))) {
        const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
        return file ? file->text : QString();
    }
    if (markdown.contains(extension))
        return tl_getInnerHTML(tl_markdownToHTML(path));
    return {};
}

} // namespace

QStringList tl_listOfAnchorsInHTML(const QString &path)
{
    static const Regex id(QStringLiteral(R"re(<.*?id="(.*?)".*?>)re"),
                          RegexOption::DotMatchesNewline);
    // Notes, glossary entries and citations carry ids of their own that are
    // no sensible link targets.
    static const QStringList notePrefixes{"fnref:", "gnref:", "cnref:", "fn:", "gn:", "cn:"};
    const QString html = htmlOfDocument(path);
    QStringList anchors;
    for (const RegexMatch &match : id.allMatches(html)) {
        const QString anchor = match.capturedString(html, 1);
        const bool note = std::any_of(notePrefixes.cbegin(), notePrefixes.cend(),
                                      [&](const QString &p) { return anchor.startsWith(p); });
        if (!note)
            anchors.append(anchor);
    }
    return anchors;
}

} // namespace tl::convert
