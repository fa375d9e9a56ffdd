// render, md prepare, css, html2md, html2text, latex, preview: the conversion of Markdown
// documents and the way back from HTML, for scripts, exports and debugging
// a document.
#include "cli.h"
#include "convert/envelope.h"
#include "convert/html_to_markdown.h"
#include "convert/html_to_text.h"
#include "convert/latex.h"
#include "convert/markdown_preparation.h"
#include "convert/markdown_to_html.h"
#include "convert/note_preview.h"
#include "convert/style_sheet.h"
#include "platform/settings.h"
#include "screenplay/script_page.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/style_values.h"
#include "store/text_encoding.h"

#include <QFile>
#include <QFileInfo>
#include <functional>

namespace tl::cli {

namespace {

const QString kStandardInput = QStringLiteral("-");

// A document to convert: its text and its path (empty for standard input).
struct Source
{
    QString text;
    QString path;
};

std::optional<Source> readSource(const QString &argument)
{
    if (argument == kStandardInput) {
        QFile in;
        if (!in.open(stdin, QIODevice::ReadOnly))
            return std::nullopt;
        const auto decoded = store::decodedTextOfUnknownEncoding(in.readAll());
        return Source{decoded ? decoded->text : QString(), QString()};
    }
    const QString path = absolutePath(argument);
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    if (!file)
        return std::nullopt;
    return Source{file->text, path};
}

void describeConverter(QCommandLineParser &parser)
{
    parser.addOption({QStringLiteral("converter"),
                      QStringLiteral("Converter: 0 (default) or 1 (MultiMarkdown); without it the "
                                     "document's own."),
                      QStringLiteral("N")});
}

std::optional<int> chosenConverter(const QCommandLineParser &parser)
{
    if (!parser.isSet(QStringLiteral("converter")))
        return std::nullopt;
    return parser.value(QStringLiteral("converter")).toInt();
}

// The one document (PATH or -) a command converts, and the delivery of what
// it becomes.
int convertSource(const QCommandLineParser &parser, const Invocation &in,
                  const std::function<QString(const Source &)> &conversion)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("%1 takes one PATH or -").arg(in.command), Usage);
    const std::optional<Source> source = readSource(in.arguments.first());
    if (!source)
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
    return deliver(conversion(*source), parser);
}

int render(const QCommandLineParser &parser, const Invocation &in)
{
    return convertSource(parser, in, [&](const Source &source) {
        // A screenplay renders as its paged script.
        const QString html = store::lowerCasedExtension(source.path) == u"fountain"
                                 ? screenplay::scriptPageForText(source.text).html
                                 : convert::markdownToHTMLForDocument(source.text, source.path,
                                                                      chosenConverter(parser));
        return parser.isSet(QStringLiteral("body")) ? convert::tl_getInnerHTML(html) : html;
    });
}

int markdown(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 2 || in.arguments.first() != u"prepare")
        return fail(QStringLiteral("Usage: tavelle md prepare PATH|- [--converter 0|1]"), Usage);
    const std::optional<Source> source = readSource(in.arguments.at(1));
    if (!source)
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.at(1)));
    const int documentConverter =
        source->path.isEmpty()
            ? int(platform::settings().integer(QLatin1String(tl::keys::setting::MarkdownConverter)))
            : store::tl_markdownConverterAtPath(source->path);
    printLine(convert::tl_stringPreparedForConversionWith(
        source->text, chosenConverter(parser).value_or(documentConverter)));
    return Success;
}

int styleSheet(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("css takes one PATH"), Usage);
    printLine(convert::tl_inheritedStyleSheet(absolutePath(in.arguments.first())));
    return Success;
}

int htmlToMarkdown(const QCommandLineParser &parser, const Invocation &in)
{
    return convertSource(parser, in, [&](const Source &source) {
        if (parser.isSet(QStringLiteral("no-styles")))
            return convert::tl_htmlWithoutInlineStyles(source.text);
        convert::MarkdownifyOptions options = convert::MarkdownifyOptions::fromSettings();
        if (parser.isSet(QStringLiteral("underscore")))
            options.underscoreEmphasis = true;
        return convert::markdownifyHTML(source.text, options);
    });
}

int htmlToText(const QCommandLineParser &parser, const Invocation &in)
{
    return convertSource(parser, in, [&](const Source &source) {
        return parser.isSet(QStringLiteral("quick")) ? convert::tl_htmlToPlainQuick(source.text)
                                                     : convert::tl_htmlToPlainText(source.text);
    });
}

int latex(const QCommandLineParser &parser, const Invocation &in)
{
    return convertSource(parser, in, [](const Source &source) {
        return convert::markdownToLatexForDocument(source.text, source.path);
    });
}

int preview(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("preview takes one PATH"), Usage);
    const QString path = absolutePath(in.arguments.first());
    if (!QFileInfo::exists(path))
        return fail(QStringLiteral("No such item: %1").arg(path));
    printValue(convert::tl_previewOfNoteWithTitle(path, QFileInfo(path).fileName()), in.json);
    return Success;
}

void describeHtmlSource(QCommandLineParser &parser)
{
    parser.addPositionalArgument(QStringLiteral("PATH"),
                                 QStringLiteral("HTML document, or - for standard input."));
    parser.addOption(
        {QStringLiteral("o"), QStringLiteral("Write to FILE."), QStringLiteral("FILE")});
}

} // namespace

const std::vector<Command> &convertCommands()
{
    static const std::vector<Command> commands{
        {"render", "Markdown or Fountain document as a standalone HTML page, or its body", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("Document, or - for standard input."));
             describeConverter(parser);
             parser.addOption({QStringLiteral("body"), QStringLiteral("Only the body's HTML.")});
             parser.addOption(
                 {QStringLiteral("o"), QStringLiteral("Write to FILE."), QStringLiteral("FILE")});
         },
         render},
        {"md", "md prepare PATH|-: the preparation pass alone", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("prepare"), QStringLiteral("prepare"));
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("Document, or - for standard input."));
             describeConverter(parser);
         },
         markdown},
        {"css", "The inherited style sheet of a document, includes expanded", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("Document."));
         },
         styleSheet},
        {"html2md", "Markdown of an HTML document, or its HTML without inline styles", false,
         [](QCommandLineParser &parser) {
             describeHtmlSource(parser);
             parser.addOption({QStringLiteral("underscore"),
                               QStringLiteral("Emphasis with \"_\" and \"__\" for this run.")});
             parser.addOption({QStringLiteral("no-styles"),
                               QStringLiteral("The HTML without the inline styles of an editor "
                                              "view, instead of Markdown.")});
         },
         htmlToMarkdown},
        {"html2text", "Plain text of an HTML document: its Markdown source, else its text", false,
         [](QCommandLineParser &parser) {
             describeHtmlSource(parser);
             parser.addOption({QStringLiteral("quick"),
                               QStringLiteral("The rougher, faster text of previews.")});
         },
         htmlToText},
        {"latex", "Markdown document as a complete LaTeX file", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("Document, or - for standard input."));
             parser.addOption(
                 {QStringLiteral("o"), QStringLiteral("Write to FILE."), QStringLiteral("FILE")});
         },
         latex},
        {"preview", "The short text the document list shows under a document's title", false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("Document."));
         },
         preview},
    };
    return commands;
}

} // namespace tl::cli
