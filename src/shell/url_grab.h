#pragma once

#include <QString>
#include <QUrl>

namespace tl::shell {

// Downloads the address into the book in the background: named by the title,
// else the server's suggested file name, else the address's last component,
// with the extension of the answer's MIME type; the address becomes its URL
// property, and "Import Complete" is shown when done.
void grabURL(const QUrl &url, const QString &book, const QString &title);

// The file name a Content-Disposition header suggests, or "".
QString suggestedFileName(const QByteArray &contentDisposition);

} // namespace tl::shell
