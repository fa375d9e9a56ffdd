#include "publish/compile_selection.h"

#include "foundation/path_string.h"
#include "links/attachments.h"
#include "publish/document_compiler.h"
#include "publish/publish_texts.h"
#include "store/extensions.h"

#include <QSet>

namespace tl::publish {

namespace {

bool extensionIsOneOf(const QString &path, std::initializer_list<const char16_t *> extensions)
{
    const QString extension = store::lowerCasedExtension(path);
    for (const char16_t *e : extensions)
        if (extension == QStringView(e))
            return true;
    return false;
}

} // namespace

bool hasTextExtension(const QString &path)
{
    return store::plainTextExtensions().contains(store::lowerCasedExtension(path));
}

bool hasImageExtension(const QString &path)
{
    return store::imageExtensions().contains(store::lowerCasedExtension(path));
}

QStringList compilableDocuments(const QStringList &selection)
{
    QStringList documents;
    for (const QString &path :
         TLKSDocumentCompiler::listOfDocumentsByExpandingBooksInArray(selection))
        if (hasTextExtension(path) || hasImageExtension(path) ||
            extensionIsOneOf(path, {u"html", u"eml"}))
            documents << path;
    return documents;
}

bool isAcceptedForCompiling(const QString &path)
{
    return hasTextExtension(path) || hasImageExtension(path) ||
           extensionIsOneOf(path, {u"html", u"eml", u"webloc", u"url"});
}

QString proposedCompileTitle(const QString &given, const QStringList &selection)
{
    if (!given.isEmpty())
        return given;
    if (!selection.isEmpty())
        return path::deletingExtension(path::lastComponent(selection.first()));
    return QString::fromUtf8(texts::CompiledDocuments);
}

QString separatorForChoice(int index)
{
    switch (index) {
    case 2:
        return QStringLiteral(">%pagebreak%");
    case 1:
        return QStringLiteral("<hr>");
    default:
        return {};
    }
}

QStringList withCoverFirst(const QStringList &documents, const QString &baseFolder)
{
    QStringList ordered = documents;
    for (const char *name : {"Cover.png", "Cover.jpg"}) {
        const qsizetype at =
            ordered.indexOf(path::appendingComponent(baseFolder, QLatin1String(name)));
        if (at >= 0) {
            ordered.move(at, 0);
            break;
        }
    }
    return ordered;
}

QString outputExtension(const QStringList &documents, bool autoFormat)
{
    if (!autoFormat)
        return QStringLiteral("html");
    bool markdown = false;
    for (const QString &path : documents) {
        if (extensionIsOneOf(path, {u"html", u"eml"}))
            return QStringLiteral("html");
        markdown =
            markdown || store::markdownExtensions().contains(store::lowerCasedExtension(path));
    }
    return markdown ? QStringLiteral("md") : QStringLiteral("txt");
}

QStringList withEmbeddedPhotos(const QStringList &documents)
{
    QStringList attachments;
    for (const QString &path : documents) {
        if (!hasTextExtension(path))
            continue;
        const QString folder = path::deletingLastComponent(path);
        for (const QString &name : links::embeddedPhotosOf(path)) {
            const QString attachment = path::appendingComponent(folder, name);
            if (!attachments.contains(attachment))
                attachments << attachment;
        }
    }
    return documents + attachments;
}

} // namespace tl::publish
