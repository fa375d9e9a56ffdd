#pragma once

#include "links/write_together.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <optional>

// Who links to an item, kept in the item's properties file: "Backlinks", the
// normalized paths of the documents that link to it, and "ReferencedPath",
// where the item was when that list was last valid.
namespace tl::links {

// The referenced item learns that `referencingDocument` links to it.
void tl_addBacklink(const QString &item, const QString &referencingDocument);
// Removes both keys; answers whether anything was removed.
bool tl_removeBacklinks(const QString &item);
// A referencing document moved from `from` to `to` (empty: it links here no
// more). Entries whose documents are gone are purged here.
void tl_changeBacklinkFrom(const QString &item, const QString &from, const QString &to);

// Reading and writing the two keys of an item.
QStringList backlinksOf(const QString &item);
QString referencedPathOf(const QString &item);
void setReferencedPath(const QString &item, const QString &normalizedPath);
// Stores the list (without duplicates) and the item's current path as where
// it holds.
void setBacklinks(const QString &item, const QStringList &backlinks);
// The stored path is set and differs from the item's normalized path.
bool hasMismatch(const QString &item);

// The same changes made through one holder: either each written in place as
// it is made, or, for the many lists one move changes, held in memory and
// written together by commit(), so that the disk is waited for twice and a
// crash leaves each properties file as it was or as it became, never in part.
class BacklinkLists
{
public:
    // In place.
    BacklinkLists() = default;
    // Held; the temporaries carry `tag` (a batch that runs again after a crash
    // passes the one it had). Past `heldLimit` bytes, what is held is written
    // as a part of the batch.
    explicit BacklinkLists(const QByteArray &tag, qsizetype heldLimit = 64 << 20);

    void addBacklink(const QString &item, const QString &referencingDocument);
    bool removeBacklinks(const QString &item);
    void changeBacklinkFrom(const QString &item, const QString &from, const QString &to);
    void setReferencedPath(const QString &item, const QString &normalizedPath);
    void setBacklinks(const QString &item, const QStringList &backlinks);

    // Writes what is held. False when the batch must run again (see
    // writeTogether); nothing held is then kept.
    bool commit();

private:
    using Change = std::function<void(QVariantMap &)>;
    // Lets `change` edit the item's properties; answers whether their stored
    // form changed.
    bool update(const QString &item, const Change &change);

    struct Held
    {
        HeldFile file; // its bytes: the properties as they now stand
        QVariantMap properties;
        QList<Change> changes;
    };
    static Held read(const QString &file);
    std::optional<QByteArray> tag_;
    qsizetype heldLimit_ = 0;
    qsizetype heldBytes_ = 0;
    bool failed_ = false;
    // Changed properties files by their own path, in the order first changed.
    QHash<QString, Held> held_;
    QStringList order_;
    // Properties files read and left as they were.
    QSet<QString> untouched_;
};

// An item path given root-relative or absolute, as absolute.
QString absoluteItemPath(const QString &path);
// Equality of item paths as the library compares names.
bool samePath(const QString &a, const QString &b);

} // namespace tl::links
