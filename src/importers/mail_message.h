#pragma once

#include <QString>

// Mail messages in their raw Internet form as HTML to show or compile. A
// small recursive walker over plain string searches: a message is a header
// and a body, and each part of a multipart body is converted the same way.
// Attachments are written to the attachment folder and linked by file URL.
namespace tl::importers {

// The system's temporary folder: where attachments are written. It must
// exist before a conversion writes there.
QString mailAttachmentFolder();

// The message as HTML with the font markers "**TavelleFont**" and
// "**TavelleFontSize**" left for the viewer; empty when there is nothing
// to show (the viewer then falls back to the text).
QString tl_emlToHTML(const QString &message,
                     const QString &attachmentFolder = mailAttachmentFolder());

// The message in the file at path, its attachment folder made first;
// empty when the file cannot be read.
QString tl_emlFileToHTML(const QString &path);

// A mail body inside the page that frames it, with its markers.
QString wrapTextInHTML(const QString &text);
// Plain mail text through MultiMarkdown.
QString convertToHTML(const QString &text);

} // namespace tl::importers
