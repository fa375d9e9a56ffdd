#pragma once

#include "store/text_encoding.h"

#include <QString>
#include <QStringList>

// Tasks made from the lines of a document: each piece of its text becomes a
// small text document in a task list, remembering its source by a link so
// that finishing it can tick the line in the source later.
namespace tl::tasks {

enum class ExtractionMode {
    WholeDocument = 0, // the document itself is moved into the list
    Lines = 1,
    Paragraphs = 2,
    RuledPieces = 3, // pieces divided by a line of four or more "-"
    MarkedLines = 4, // only the lines that begin with the task marker
};

// Makes the tasks of a document's text in the document's folder, in a task
// list named after the document (`inNewBook`), or in the inbox when marked
// lines go there. Pieces whose task exists already with the same text are
// skipped, so extracting twice makes nothing new. Answers the document's
// path; `created` receives the paths of the new tasks.
QString tl_extractTasksToPath(const QString &text, const QString &documentPath, ExtractionMode mode,
                              store::TextEncoding encoding, bool inNewBook,
                              QStringList *created = nullptr);

// The command on one document: its marked lines become tasks, beside it when
// it is a task itself and else in a list of its own. `text` is what the
// document shows (the plain text of a formatted one). Nothing happens without
// a marker, or when no line after the first begins with it.
QStringList tl_extractTasks(const QString &documentPath, const QString &text,
                            store::TextEncoding encoding);

// The marker of a task line, the "markTaskWithCharacter" setting trimmed.
QString taskMarker();

} // namespace tl::tasks
