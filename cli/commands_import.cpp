// eml2html, opml2html: foreign material as the HTML the program shows for it.
#include "cli.h"
#include "importers/mail_message.h"
#include "importers/opml_converter.h"
#include "store/document_file.h"

#include <QFileInfo>
#include <functional>

namespace tl::cli {

namespace {

void describeFileSource(QCommandLineParser &parser)
{
    parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("File to convert."));
    parser.addOption(
        {QStringLiteral("o"), QStringLiteral("Write to FILE."), QStringLiteral("FILE")});
}

// The one file (PATH) a command converts, and the delivery of its HTML.
int convertFile(const QCommandLineParser &parser, const Invocation &in,
                const std::function<QString(const QString &path)> &conversion)
{
    if (in.arguments.size() != 1)
        return fail(QStringLiteral("%1 takes one PATH").arg(in.command), Usage);
    const QString path = absolutePath(in.arguments.first());
    if (!QFileInfo(path).isFile())
        return fail(QStringLiteral("Cannot read %1").arg(in.arguments.first()));
    return deliver(conversion(path), parser);
}

QString outlineFileToHTML(const QString &path)
{
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    return file ? importers::tl_OPMLToHTML(file->text) : QString();
}

} // namespace

const std::vector<Command> &importCommands()
{
    static const std::vector<Command> commands{
        {"eml2html", "A mail message as HTML, its attachments in the temporary folder", false,
         describeFileSource,
         [](const QCommandLineParser &parser, const Invocation &in) {
             return convertFile(parser, in, importers::tl_emlFileToHTML);
         }},
        {"opml2html", "An OPML outline as nested HTML lists", false, describeFileSource,
         [](const QCommandLineParser &parser, const Invocation &in) {
             return convertFile(parser, in, outlineFileToHTML);
         }},
    };
    return commands;
}

} // namespace tl::cli
