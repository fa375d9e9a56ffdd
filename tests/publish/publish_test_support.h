#pragma once

// A library with a book to compile into, and the compiler pointed at it.

#include "../store/library_fixture.h"
#include "publish/document_compiler.h"

#include <QDir>

namespace tltest {

class PublishTest : public LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        book_ = makeFolder(inRoot("Book"));
        compiler_.basePath = book_;
    }

    // A document in the book.
    QString doc(const QString &name, const QByteArray &content)
    {
        return makeFile(book_ + "/" + name, content);
    }
    QStringList imagesIn(const QString &folder) const
    {
        return QDir(folder + "/TLImages").entryList(QDir::Files, QDir::Name);
    }

    QString book_;
    tl::publish::TLKSDocumentCompiler compiler_;
};

} // namespace tltest
