#pragma once

#include "contexts/context_words.h"

#include <QString>
#include <QStringList>

namespace tl::contexts {

class TagStores;

// What one item on disk says: whether it exists, is a book, and its raw
// "Tags", read with one stat and one read of its properties file.
struct ItemOnDisk
{
    // The path as the disk spells it, composed or decomposed.
    QString path;
    bool exists = false;
    bool isBook = false;
    QStringList tags;
};
ItemOnDisk readItem(const QString &absolutePath);

// Whether the list holds the tag, names compared with canonical equivalence.
bool holdsCanonically(const QStringList &list, const QString &tag);
// Raw tags without duplicates, less those the list does not hold.
QStringList verifiedTags(const QStringList &raw, const QStringList &available);
// Stores the list as "Tags", removing the property when it is empty.
void storeTags(const QString &path, const QStringList &tags);

// The steps of one item inside a batch; each answers whether it changed the
// index.
bool collectTagsInPlist(TagStores &stores, const QString &path);
bool updateContextsRemoving(TagStores &stores, const QString &path, const TagSet &removed,
                            const TagSet &added);
bool collectTagsFromText(TagStores &stores, const QString &path, const QString &text);

// "TLKSReloadContextSmartBook", and the favourites' event with it.
void postContextsChanged(bool favorites);

} // namespace tl::contexts
