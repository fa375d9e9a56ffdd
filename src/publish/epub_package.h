#pragma once

#include "publish/document_compiler.h"

#include <QString>

// The fixed texts of an EPUB 2 package.
namespace tl::publish::epub {

QString mimetype();
QString containerXML();
QString displayOptionsXML();
// Up to the opening navMap.
QString ncxHead(const QString &identifier, const QString &title);
QString ncxTail();
// Up to and with the head of a page; the XHTML 1.1 declaration goes in front
// of the finished page.
QString pageHead(const QString &identifier, const QString &title);
QString xhtmlDeclaration();
QString page(const QString &head, const QString &body);
QString captionPage(const QString &head, const QString &imageHref, const QString &caption);
QString coverPage(const QString &imageHref);

// Manifest and spine lines.
QString fontItem(int index, const QString &file);
QString styleSheetItem();
QString navigationItem(const QString &href);
QString documentItem(int number, const QString &href);
QString imageItem(int number, const QString &name);
QString coverItems(const QString &imageName);
QString spineItem(int number);
QString coverSpineItem();
QString coverMeta();

struct PackageMetadata
{
    EBookAttributes attributes;
    QString identifier;
    QString date;
    bool hasCover = false;
};
QString packageDocument(const PackageMetadata &metadata, const QString &manifest,
                        const QString &spine);

// Text for XML content and attribute values.
QString escaped(const QString &text);

} // namespace tl::publish::epub
