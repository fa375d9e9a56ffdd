#include "contexts/text_scan.h"

#include "contexts/item_tags.h"
#include "contexts/library_walk.h"
#include "contexts/tag_stores.h"
#include "foundation/regex.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/text_conversions.h"

#include <QStringList>

namespace tl::contexts {

namespace {

const QStringList &scannedKinds()
{
    static const QStringList kinds = {"md", "markdown", "text", "mdown", "rmd", "txt", "html"};
    return kinds;
}

bool isScanned(QStringView name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && scannedKinds().contains(name.mid(dot + 1).toString().toLower());
}

// Removed in this order before the rest becomes plain text.
QString withoutEmbeddings(QString html)
{
    static const Regex kRemoved[] = {
        Regex(QStringLiteral("<a href=.+?>")),        Regex(QStringLiteral("<img .+?>")),
        Regex(QStringLiteral("<script .+?/script>")), Regex(QStringLiteral("<link .+?/link>")),
        Regex(QStringLiteral("<object .+?>")),        Regex(QStringLiteral("<iframe .+?>")),
    };
    for (const Regex &expression : kRemoved)
        html = expression.replaceAll(html, QString());
    return html;
}

QString innerHTML(const QString &html)
{
    static const Regex body(QStringLiteral("<body[^>]*>([\\s\\S]*)</body>"),
                            RegexOption::CaseInsensitive);
    const std::optional<RegexMatch> match = body.match(html);
    return match ? match->capturedString(html, 1) : html;
}

} // namespace

QString scannableText(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    if (!scannedKinds().contains(extension))
        return {};
    const std::optional<store::DecodedText> decoded = store::tl_stringWithContentsOfFile(path);
    if (!decoded)
        return {};
    if (extension != u"html")
        return decoded->text;
    if (!decoded->text.contains(QLatin1String("Generator: Tavelle")))
        return {};
    return store::tl_htmlToPlainText(withoutEmbeddings(innerHTML(decoded->text)));
}

ScanResult extractContextsFromDocuments(const std::atomic_bool &stop,
                                        const std::function<void(double)> &progress)
{
    ScanResult result;
    QStringList documents;
    walkLibraryFiles(
        store::libraryRoot(), isScanned,
        [&](const QString &path, const struct stat &) {
            if (!path.contains(QLatin1String(names::TLResources)) &&
                !store::tl_pathIsExcludedFromDisplay(path))
                documents << path;
        },
        &stop);
    logLine(QStringLiteral("documents: %1").arg(documents.size()));
    const bool changed = forEachInBatches(
        documents.size(),
        [&](TagStores &stores, qsizetype i) {
            if (progress)
                progress(100.0 / double(documents.size()) * double(i));
            const QString text = scannableText(documents.at(i));
            if (!text.isEmpty())
                collectTagsFromText(stores, documents.at(i), text);
            ++result.documents;
        },
        &stop);
    result.stopped = stop.load();
    if (changed)
        postContextsChanged(true);
    if (progress && !result.stopped)
        progress(100.0);
    return result;
}

} // namespace tl::contexts
