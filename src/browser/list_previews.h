#pragma once

#include "store/list_row.h"

#include <QString>

// What a row of the document list shows besides its record.
namespace tl::browser {

// The row's name as shown: without the extension unless showFileExtensions
// is on; smart book and context rows keep their titles.
QString listTitle(const store::ListRow &row);

// The first lines of a document's preview, as many as the inherited
// showPreviewForNotes asks for; empty for books and when no preview is
// wanted. Reads and converts files: call it off the main thread.
QString listPreview(const QString &path);

} // namespace tl::browser
