#pragma once

#include <QString>

// The icon of an item: one of the program's named icons ("icon-book-...",
// "icon-doc-..."; the desktop maps names to pictures), a picture file
// showing the item itself, or the desktop theme's icon for the file's type.
namespace tl::store {

struct ItemIcon
{
    enum class Kind { Named, Picture, Platform };
    Kind kind = Kind::Named;
    // The icon's name, or the picture's path.
    QString value;
    bool operator==(const ItemIcon &) const = default;
};

// With previews, images, PDF files, ITMZ files and documents with an image
// attachment show a picture. Named icons take "-dark" with the dark theme.
// An HTML document first found to carry a plain-text representation is
// marked for Markdown editing on the way.
ItemIcon tl_iconForPath_HQ(const QString &path, bool previews, int displayScale = 1);
ItemIcon tl_iconForPath(const QString &path);
ItemIcon tl_iconForPathLQ(const QString &path);

} // namespace tl::store
