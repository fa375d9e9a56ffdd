#pragma once

#include "importers/pasteboard.h"

class QMimeData;

namespace tl::importers {

// The clipboard or a drop as the import sees it, its formats in the order
// the source offers them: HTML, plain text, file and web addresses, PNG,
// JPEG and TIFF pictures and rich text. A link's title (Firefox's
// text/x-moz-url) or a file's name names the material.
Pasteboard pasteboardFromMimeData(const QMimeData &data);
// Whether it offers a format the import takes, judged by the names of its
// formats alone (a drag in progress is not asked for its bytes).
bool offersImportableFormat(const QMimeData &data);

} // namespace tl::importers
