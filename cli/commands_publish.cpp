// compile, epub: many documents into one compiled document, a PDF of it,
// or an e-book.
#include "cli.h"
#include "foundation/path_string.h"
#include "publish/compile_selection.h"
#include "publish/document_compiler.h"
#include "publish/ebook_details.h"
#include "publish/pdf_printing.h"
#include "publish/publish_texts.h"

#include <QFile>
#include <QFileInfo>

namespace tl::cli {

namespace {

// The PATH arguments as items of the library, in their order.
std::optional<QStringList> itemsInLibrary(const QStringList &arguments)
{
    QStringList items;
    for (const QString &argument : arguments) {
        const std::optional<QString> item = itemInLibrary(argument, Inside::RootAllowed);
        if (!item)
            return std::nullopt;
        items << *item;
    }
    return items;
}

std::optional<QString> baseBook(const QCommandLineParser &parser)
{
    if (!parser.isSet(QStringLiteral("base")))
        return QString();
    const std::optional<QString> base =
        itemInLibrary(parser.value(QStringLiteral("base")), Inside::RootAllowed);
    if (base && !QFileInfo(*base).isDir()) {
        fail(QStringLiteral("Not a book: %1").arg(*base));
        return std::nullopt;
    }
    return base;
}

int compile(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.isEmpty())
        return fail(QStringLiteral("compile takes one PATH or more"), Usage);
    const QString format = parser.value(QStringLiteral("format"));
    if (!QStringList{"auto", "html", "md", "txt"}.contains(format))
        return fail(QStringLiteral("--format is auto, html, md or txt"), Usage);
    const std::optional<QStringList> selection = itemsInLibrary(in.arguments);
    const std::optional<QString> base = baseBook(parser);
    if (!selection || !base)
        return Failure;
    if (publish::compilableDocuments(*selection).isEmpty())
        return fail(QString::fromUtf8(publish::texts::NothingToCompile));

    publish::TLKSDocumentCompiler compiler;
    compiler.basePath = *base;
    if (format != u"auto")
        compiler.outputKind = format;
    const QString title =
        publish::proposedCompileTitle(parser.value(QStringLiteral("title")), *selection);
    const QString compiled =
        compiler.tl_createHTMLFromDocuments(*selection, title, QString(), format == u"auto");
    if (compiled.isEmpty())
        return fail(QStringLiteral("Cannot write the compiled document"));
    if (!parser.isSet(QStringLiteral("pdf"))) {
        printValue(compiled, in.json);
        return Success;
    }
    const QString folder = absolutePath(parser.value(QStringLiteral("pdf")));
    const std::optional<QString> pdf = publish::printCompiledDocumentToPDF(compiled, title, folder);
    if (!pdf)
        return fail(QStringLiteral("Cannot print the PDF into %1").arg(folder));
    if (in.json)
        printValue(
            QVariantMap{{QStringLiteral("document"), compiled}, {QStringLiteral("pdf"), *pdf}},
            true);
    else
        printList({compiled, *pdf}, false);
    return Success;
}

int epub(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.isEmpty())
        return fail(QStringLiteral("epub takes one PATH or more"), Usage);
    if (parser.value(QStringLiteral("title")).isEmpty())
        return fail(QStringLiteral("epub needs --title"), Usage);
    const std::optional<QStringList> selection = itemsInLibrary(in.arguments);
    if (!selection)
        return Failure;
    publish::TLKSDocumentCompiler compiler;
    compiler.basePath = QFileInfo(selection->first()).isDir()
                            ? selection->first()
                            : path::deletingLastComponent(selection->first());
    publish::EBookAttributes attributes;
    attributes.title = parser.value(QStringLiteral("title"));
    attributes.author = parser.value(QStringLiteral("author"));
    attributes.subject = parser.value(QStringLiteral("subject"));
    attributes.description = parser.value(QStringLiteral("description"));
    attributes.rights = parser.value(QStringLiteral("rights"));
    const std::optional<QString> book = compiler.tl_makeePubWithAttributes(
        publish::withProposedDetails(attributes, *selection, compiler.basePath), *selection);
    if (!book)
        return fail(QStringLiteral("The e-book was not made"));
    if (!parser.isSet(QStringLiteral("o"))) {
        printValue(*book, in.json);
        return Success;
    }
    const QString target = absolutePath(parser.value(QStringLiteral("o")));
    if (QFileInfo::exists(target) || !QFile::rename(*book, target)) {
        QFile::remove(*book);
        return fail(QStringLiteral("Cannot write %1").arg(target));
    }
    printValue(target, in.json);
    return Success;
}

void describeSelection(QCommandLineParser &parser)
{
    parser.addPositionalArgument(QStringLiteral("PATH"),
                                 QStringLiteral("Documents and books, in their order."),
                                 QStringLiteral("PATH..."));
    parser.addOption(
        {QStringLiteral("title"), QStringLiteral("Title of the result."), QStringLiteral("T")});
}

} // namespace

const std::vector<Command> &publishCommands()
{
    static const std::vector<Command> commands{
        {"compile", "Documents and books joined into one new document; prints its path", true,
         [](QCommandLineParser &parser) {
             describeSelection(parser);
             parser.addOption({QStringLiteral("base"),
                               QStringLiteral("Book the document goes into (default: the "
                                              "library's root)."),
                               QStringLiteral("BOOK")});
             parser.addOption({QStringLiteral("format"),
                               QStringLiteral("auto (by the documents), html, md or txt."),
                               QStringLiteral("FORMAT"), QStringLiteral("auto")});
             parser.addOption({QStringLiteral("pdf"),
                               QStringLiteral("Also print it as a PDF into DIR."),
                               QStringLiteral("DIR")});
         },
         compile},
        {"epub", "Documents and books as an EPUB e-book beside them; prints its path", true,
         [](QCommandLineParser &parser) {
             describeSelection(parser);
             for (const char *name : {"author", "subject", "description", "rights"})
                 parser.addOption({QLatin1String(name),
                                   QStringLiteral("The book's %1.").arg(QLatin1String(name)),
                                   QStringLiteral("TEXT")});
             parser.addOption({QStringLiteral("o"), QStringLiteral("Write the book to FILE."),
                               QStringLiteral("FILE")});
         },
         epub},
    };
    return commands;
}

} // namespace tl::cli
