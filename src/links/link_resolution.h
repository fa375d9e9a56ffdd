#pragma once

#include <QString>
#include <QStringList>

// Following a link whose target does not exist as written: the target is
// found by spelling, by similar titles in its folder or the library, or by
// content; failing that the user may create it.
namespace tl::links {

struct ResolutionRequest
{
    // The absolute path the link asks for, perhaps with "#anchor".
    QString wanted;
    // Names that must not count as content hits.
    QStringList excludedNames;
    // Whether a question may be put to the user (a window is there).
    bool mayAsk = false;
    // The document that holds the link; empty for none.
    QString backLink;
};

// The path found, with the wanted anchor; "" when nothing was found (and
// after the question, whatever the answer: a created document is shown by
// an event).
QString tl_findAlternativePathExcluding(const ResolutionRequest &request);

// Whether the extension is one of the text kinds links are followed into:
// the plain-text list and "html".
bool hasTextExtension(const QString &path);

} // namespace tl::links
