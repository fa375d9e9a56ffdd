#pragma once

#include <QString>

// What the views show of a Fountain document: the paged script as one HTML
// page, and its page count. Stateless, so it may run on any thread.
namespace tl::screenplay {

struct ScriptPage
{
    QString html;
    int pageCount = 0;
};

// The document at a path, read as UTF-8; a file that cannot be read so
// gives the page of an empty script.
ScriptPage scriptPageForDocument(const QString &path);
// Fountain text, such as the unsaved text of an editor.
ScriptPage scriptPageForText(const QString &text);

} // namespace tl::screenplay
