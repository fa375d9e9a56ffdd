#pragma once

#include "store/list_row.h"

#include <QString>

// What a row of the document list shows besides its record.
namespace tl::browser {

// The row's name as shown: without the extension unless showFileExtensions
// is on; smart book and context rows keep their titles.
QString listTitle(const store::ListRow &row);

// The first lines of a text document below its title, as many as the
// inherited showPreviewForNotes asks for, joined by blanks; empty for
// other kinds and when no preview is wanted.
QString listPreview(const QString &path);

} // namespace tl::browser
