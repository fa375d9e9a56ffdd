#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// Material pasted or dropped on a book becomes a new document of the book.
namespace tl::importers {

// The formats the import knows, by the names it gives them whatever the
// clipboard or drop source calls them.
namespace pasteboard_type {
inline constexpr char WebArchive[] = "com.apple.webarchive";
inline constexpr char HTML[] = "public.html";
inline constexpr char PlainText[] = "public.utf8-plain-text";
inline constexpr char FlatRTFD[] = "com.apple.flat-rtfd";
inline constexpr char FileURL[] = "public.file-url";
inline constexpr char PNG[] = "public.png";
inline constexpr char TIFF[] = "public.tiff";
inline constexpr char JPEG[] = "public.jpg";
inline constexpr char RTF[] = "public.rtf";
// The web address that came with the content; never a document of its own.
inline constexpr char URL[] = "public.url";
} // namespace pasteboard_type

// What a clipboard or a drop holds: each format's bytes in the order the
// source prefers them, and the name the source gave the material.
class Pasteboard
{
public:
    // A type already held keeps its first bytes.
    void add(const QString &type, const QByteArray &data);
    QStringList types() const;
    bool hasType(const QString &type) const;
    QByteArray dataForType(const QString &type) const;
    // The bytes read as UTF-8; empty when the type is not held.
    QString stringForType(const QString &type) const;

    // The text that names new documents: the title the source gave (a
    // link's title), else the plain text.
    QString nameText() const;
    void setName(const QString &name) { m_name = name; }

private:
    QList<QPair<QString, QByteArray>> m_entries;
    QString m_name;
};

struct PastedDocument
{
    // The new document; empty when nothing was written.
    QString path;
    // The web address that came with the content, or empty.
    QString address;
};

// The type the import takes when none is asked for: the first the source
// offers that the import knows; empty for none.
QString importableType(const Pasteboard &pasteboard);

// A new document in the book from the pasteboard: of the given type, or of
// the first type the source offers that the import knows. The new document
// is announced as modified on disk.
PastedDocument tl_addDocumentFromPasteboard(const QString &book, const Pasteboard &pasteboard,
                                            const QString &type = {});

} // namespace tl::importers
