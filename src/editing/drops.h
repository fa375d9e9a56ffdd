#pragma once

#include <QString>
#include <optional>

// What dropped files, pasted links and inserted attachments become as text.
namespace tl::editing {

// A dropped file: its text, a link to it, or (attach) an attachment to import.
struct DroppedText
{
    QString text;
    bool attach = false;
};

struct DropContext
{
    bool mayCopy = false;         // the drag offers a copy
    bool markdownDocument = true; // the editor shows a Markdown document
    bool commandAlone = false;    // Ctrl alone held: an image goes in as a plain link
    QString root;
};
DroppedText textForDroppedFile(const QString &path, const DropContext &context);

// The file put into the document's attachment folder (an identical file
// already there is used instead), as a link by its kind; nothing when the
// copy failed. `save` false links the file where it is.
std::optional<QString> insertImageSavingToTLImages(const QString &file, bool save,
                                                   const QString &documentPath);
// The Markdown form of an attachment at a path relative to the document.
QString attachmentMarkdown(const QString &relativePath);
inline constexpr char CannotInsertAttachment[] = "Cannot insert attachment";

// What "Paste as Markdown" inserts for the clipboard: its HTML, or a link
// for a URL (titled by the selection or the URL's name), or its text.
struct PastedContent
{
    QString html;
    QString text;
    QString urlName;
};
QString tl_pasteAsMarkdown(const PastedContent &pasted, const QString &selectedText,
                           const QString &documentPath, const QString &root);

} // namespace tl::editing
