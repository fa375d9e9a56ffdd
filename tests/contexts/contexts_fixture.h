#pragma once

// A library with helpers to give items tags and to read both tag stores.

#include "contexts/tag_files.h"
#include "store/library_fixture.h"

namespace tltest {

class ContextsTest : public LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        setSetting("contextsEnabled", true);
        setSetting("extractContextsAutomatically", true);
    }

    // A document (or, for a name without extension, a book) bearing the tags.
    QString item(const QString &relative, const QStringList &tags = {})
    {
        const QString path = inRoot(relative);
        const bool book = !relative.contains(u'.');
        book ? makeFolder(path) : makeFile(path);
        if (!tags.isEmpty())
            writePlist(book ? path + "/BookProperties.plist" : path + ".plist",
                       QVariantMap{{"Tags", tags}});
        return path;
    }
    QStringList tagsOf(const QString &path) const
    {
        const bool book = QFileInfo(path).isDir();
        return readPlist(book ? path + "/BookProperties.plist" : path + ".plist")
            .value("Tags")
            .toStringList();
    }

    void setAvailable(const QStringList &tags)
    {
        writeFile(tl::contexts::availableTagsPath(), tl::plist::toXml(tags));
    }
    QStringList available() const
    {
        return tl::plist::parse(readFile(tl::contexts::availableTagsPath()))
            .value_or(QVariant())
            .toStringList();
    }
    void setIndex(const QVariantMap &index)
    {
        writeFile(tl::contexts::tagDBPath(), tl::plist::toXml(index));
    }
    QVariantMap index() const { return readPlist(tl::contexts::tagDBPath()); }
    QStringList entry(const QString &tag) const { return index().value(tag).toStringList(); }
};

} // namespace tltest
