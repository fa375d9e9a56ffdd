#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

// Rich text with attachments pasted in the Mac's flat form.
namespace tl::importers::detail {

struct PackageEntry
{
    QString name;
    QByteArray data;
};

// The files of a flat rich-text package: the tag "rtfd", then 32-bit
// little-endian numbers (a version, the count of entries, each entry's name
// length, each entry's data length), the names, then the data. Nothing for
// bytes of another shape.
std::optional<QList<PackageEntry>> unflattenRTFD(const QByteArray &flat);

// A formatted document in the book from the flat package, its pictures and
// PDFs in the book's attachment folder; the new path, or empty.
QString addFlatRTFD(const QString &book, const QByteArray &flat);

} // namespace tl::importers::detail
