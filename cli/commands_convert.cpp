// render, md prepare, css: the conversion of Markdown documents, for
// scripts, exports and debugging a document.
#include "cli.h"
#include "convert/envelope.h"
#include "convert/markdown_preparation.h"
#include "convert/markdown_to_html.h"
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

int render(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("render takes one PATH or -"), Usage);
    const std::optional<Source> source = readSource(in.arguments.first());
    if (!source)
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
    // A screenplay renders as its paged script.
    const QString html = store::lowerCasedExtension(source->path) == u"fountain"
                             ? screenplay::scriptPageForText(source->text).html
                             : convert::markdownToHTMLForDocument(source->text, source->path,
                                                                  chosenConverter(parser));
    return deliver(parser.isSet(QStringLiteral("body")) ? convert::tl_getInnerHTML(html) : html,
                   parser);
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
    };
    return commands;
}

} // namespace tl::cli
