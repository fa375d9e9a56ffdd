#include "contexts/tag_rename.h"

#include "contexts/context_keys.h"
#include "contexts/context_words.h"
#include "contexts/item_tags.h"
#include "contexts/tag_files.h"
#include "contexts/tag_stores.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/regex.h"
#include "platform/alerts.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/log.h"

namespace tl::contexts {

namespace {

const QString kFavorite = QLatin1String(keys::FavoriteTag);

bool isTextDocument(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    return store::plainTextExtensions().contains(extension) || extension == u"html" ||
           extension == u"htm";
}

// The item's verified tags with the old name replaced in its place, or
// removed; the favourite mark stays with the item.
QStringList renamedTags(const ItemOnDisk &item, const QStringList &available, const QString &tag,
                        const QString &newName)
{
    QStringList tags = verifiedTags(item.tags, available);
    const qsizetype at = tags.indexOf(tag);
    if (at >= 0 && newName.isEmpty())
        tags.removeAt(at);
    else if (at >= 0)
        tags[at] = newName;
    tags.removeDuplicates();
    if (item.tags.contains(kFavorite))
        tags << kFavorite;
    return tags;
}

void renameInList(QStringList &list, const QString &tag, const QString &newName)
{
    const qsizetype at = list.indexOf(tag);
    if (newName.isEmpty())
        list.removeAll(tag);
    else if (at >= 0)
        list[at] = newName;
    else
        list << newName;
    list.removeDuplicates();
}

// Keys no list names any more leave the index, but for the favourites.
void sweepIndex(TagStores &stores)
{
    for (const QString &key : stores.index().keys()) {
        if (key == kFavorite || stores.isAvailable(key))
            continue;
        logLine(QStringLiteral("did not find %1").arg(key));
        stores.index().removeKey(key);
    }
}

bool askToChangeText(const QString &tag, const QString &newName)
{
    platform::Alert alert;
    if (newName.isEmpty()) {
        alert.message =
            QStringLiteral("Delete \"%1\" from the contents of documents assigned to this "
                           "context?")
                .arg(tag);
        alert.buttons = {QStringLiteral("Delete from Text"), QStringLiteral("Cancel")};
    } else {
        alert.message =
            QStringLiteral("Rename \"%1\" to \"%2\" in the contents of documents assigned to "
                           "this context, too?")
                .arg(tag, newName);
        alert.buttons = {QStringLiteral("Rename in Text"), QStringLiteral("Cancel")};
    }
    alert.informativeText = QStringLiteral("You cannot undo this action.");
    return platform::alerts().run(alert) == 0;
}

} // namespace

QStringList renameTagInStores(const QString &tag, const QString &newName)
{
    if (tag.isEmpty() || tag == newName)
        return {};
    TagStores stores;
    TagIndex &index = stores.index();
    QStringList documents;
    for (const QString &path : index.paths(tag)) {
        const ItemOnDisk item = readItem(stores.absolute(path));
        if (!item.exists)
            continue;
        storeTags(item.path, renamedTags(item, stores.available(), tag, newName));
        if (isTextDocument(item.path))
            documents << item.path;
    }
    if (index.hasKey(tag)) {
        // An entry of the new name is replaced, not merged: the next
        // collection brings its items back from their properties.
        if (!newName.isEmpty())
            index.setPaths(newName, index.paths(tag));
        index.removeKey(tag);
    }
    renameInList(stores.available(), tag, newName);
    sweepIndex(stores);
    stores.commit();
    return documents;
}

void tl_renameTagTo(const QString &tag, const QString &newName, bool renameSilently)
{
    const QStringList documents = renameTagInStores(tag, newName);
    if (renameSilently || documents.isEmpty() || !contextsExtractedAutomatically())
        return;
    if (askToChangeText(tag, newName))
        renameTagInDocuments(documents, tag, newName);
}

QString tl_renameTagInText(const QString &text, const QString &tag, const QString &newName,
                           bool html)
{
    const QString word = Regex::escapePattern(tag);
    const Regex expression(html ? QStringLiteral("(?<=\\s|>)%1(?=,|;|\\s|&|$|<)").arg(word)
                                : QStringLiteral("(?<!\\S)%1(?=,|;|\\s|$)").arg(word));
    if (!html)
        return expression.replaceAll(text, Regex::escapeTemplate(newName));
    // Only the body's text changes; the matches still see the characters
    // around them.
    static const Regex bodyTag(QStringLiteral("<body.*?>"));
    const std::optional<RegexMatch> body = bodyTag.match(text);
    const qsizetype start = body ? body->end() : 0;
    const qsizetype end = text.size() - 1;
    return expression.replaceMatches(
        text, [&](const RegexMatch &match, QStringView) -> std::optional<QString> {
            if (match.start() < start || match.end() > end)
                return std::nullopt;
            return newName;
        });
}

int renameTagInDocuments(const QStringList &documents, const QString &tag, const QString &newName)
{
    int rewritten = 0;
    for (const QString &path : documents) {
        const std::optional<store::DecodedText> decoded = store::tl_stringWithContentsOfFile(path);
        if (!decoded || decoded->text.isEmpty())
            continue;
        const bool html = store::lowerCasedExtension(path) == u"html";
        const QString text = tl_renameTagInText(decoded->text, tag, newName, html);
        if (text == decoded->text || !store::tl_writeToFile(text, path, true, decoded->encoding))
            continue;
        ++rewritten;
        NotificationCenter::defaultCenter().post(QLatin1String(events::FileModifiedOnDisk),
                                                 {{QStringLiteral("path"), path}});
    }
    return rewritten;
}

void tl_excludeTag(const QString &tag)
{
    QStringList excluded = readExcludedTags();
    excluded << tag;
    writeExcludedTags(excluded);
    tl_renameTagTo(tag, QString(), true);
}

} // namespace tl::contexts
