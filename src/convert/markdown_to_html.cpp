#include "convert/markdown_to_html.h"

#include "convert/convert_keys.h"
#include "convert/default_converter.h"
#include "convert/envelope.h"
#include "convert/html_postprocessing.h"
#include "convert/markdown_preparation.h"
#include "convert/multimarkdown.h"
#include "convert/resources.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/style_values.h"

#include <QFileInfo>
#include <climits>

namespace tl::convert {

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

// "[..](..)" and "[.](.)" links name the folders they lead to.
QString withFolderSelfLinks(const QString &text, const QString &path)
{
    static const Regex up(QStringLiteral(R"(\[..\]\(..(/?)\))"));
    static const Regex here(QStringLiteral(R"(\[.\]\(.(/?)\))"));
    const QString folder = path::deletingLastComponent(path);
    const QString parentName =
        Regex::escapeTemplate(path::lastComponent(path::deletingLastComponent(folder)));
    const QString folderName = Regex::escapeTemplate(path::lastComponent(folder));
    const QString once = up.replaceAll(text, QStringLiteral("[%1](..$1)").arg(parentName));
    return here.replaceAll(once, QStringLiteral("[%1](.$1)").arg(folderName));
}

bool getsAutomaticTitle(const QString &text, const QString &path)
{
    static const Regex emptyFirstLine(QStringLiteral(R"(^\s*\n)"));
    static const QStringList openings = {QStringLiteral("Title:"), QStringLiteral("title:"),
                                         QStringLiteral("%"), QStringLiteral("#"),
                                         QStringLiteral("---")};
    if (!store::plainTextExtensions().contains(store::lowerCasedExtension(path)))
        return false;
    const qsizetype newline = text.indexOf(u'\n');
    if (newline < 0 || newline > 99)
        return false;
    for (const QString &opening : openings) {
        if (text.startsWith(opening))
            return false;
    }
    const std::optional<RegexMatch> empty = emptyFirstLine.match(text);
    if (empty && empty->start() == 0)
        return false;
    return store::tl_stringMatchesFirstLineOfText(
        path::deletingExtension(path::lastComponent(path)), text);
}

QString withoutIndexMarks(const QString &text)
{
    static const Regex indexMark(QStringLiteral(R"((?<!`)\[>>([^\]].+?)\])"));
    return indexMark.replaceAll(text, QString());
}

QString withDiagramScripts(const QString &text)
{
    static const Regex diagramStart(QStringLiteral(R"((?m:(^```mermaid.+?$)))"));
    static const RegexTemplate darkDiagram(diagramStart,
                                           QStringLiteral("$1\n%%{init: {'theme': 'dark'} }%%"));
    if (!text.contains(QStringLiteral("```mermaid")))
        return text;
    QString result = text + QStringLiteral("\n\n<script src=\"%1\"></script>\n"
                                           "<script>mermaid.initialize({startOnLoad:true});"
                                           "</script>")
                                .arg(mermaidScriptURL());
    if (setting(tl::keys::setting::DarkTheme) && !setting(keys::AvoidDarkThemeForDocuments))
        result = diagramStart.replaceAll(result, darkDiagram);
    return result;
}

QString converted(const QString &text, int converter, const QString &path, bool contents)
{
    switch (converter) {
    case MultiMarkdown:
        return tl_multiMarkdownWithPath(text, path);
    case DefaultConverter:
        return tl_markdownWithPandoc(text, true, contents);
    default:
        return text;
    }
}

} // namespace

QString markdownToHTMLForDocument(const QString &input, const QString &path,
                                  std::optional<int> chosenConverter)
{
    const bool isFile = !path.isEmpty() && QFileInfo(path).isFile();
    int converter =
        int(platform::settings().integer(QLatin1String(tl::keys::setting::MarkdownConverter)));
    bool contents = false;
    if (isFile) {
        contents = !store::propertyValueIsEmpty(
            store::tl_propertyForKey(path, QLatin1String(tl::keys::property::TOC)));
        converter = store::tl_markdownConverterAtPath(path);
    }
    converter = chosenConverter.value_or(converter);
    QString text = input;
    if (text.startsWith(QStringLiteral("<!-- Plain Text Representation:\n")))
        text = tl_plainTextRepresentation(text);
    text = tl_stringPreparedForConversionWith(text, converter);
    if (isFile)
        text = withFolderSelfLinks(text, path);
    if (getsAutomaticTitle(text, path))
        text.prepend(QStringLiteral("# "));
    text = withoutIndexMarks(text);
    text = withDiagramScripts(text);

    QString html = converted(text, converter, isFile ? path : QString(), contents);
    html = withOrderedSubListsClosed(html);
    if (isFile) {
        if (setting(tl::keys::setting::ManageLinks) && setting(keys::AppendBacklinksToText))
            html = withBacklinks(html, path);
        html = tl_makeTLLinksRelativeTo(html, path::deletingLastComponent(path));
    }
    html = withUniqueIds(html);
    if (setting(keys::AddLinksToHeadings))
        html = withLinksOnHeadings(html);
    return tl_createFormattedDocWithBody(path, html);
}

QString tl_markdownToHTML(const QString &receiver)
{
    // A text longer than any path the system takes names no file, and is
    // not converted to a path to be asked about.
    if (receiver.size() >= PATH_MAX || !QFileInfo(receiver).isFile())
        return markdownToHTMLForDocument(receiver, QString());
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(receiver);
    return markdownToHTMLForDocument(file ? file->text : QString(), receiver);
}

} // namespace tl::convert
