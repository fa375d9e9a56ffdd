#pragma once

#include <QSet>
#include <QString>

// Images gathered into one TLImages folder, each file once.
namespace tl::publish {

// The name in the folder of a file with the same content as the source, or
// of a new copy under a free name; empty when the source can't be copied.
QString copiedOnce(const QString &source, const QString &imagesFolder);

// The text with the images it shows gathered into the base's TLImages
// folder and their references pointing there. HTML output looks at img
// tags only, other output at Markdown images too. The names used are added
// to the set.
QString withGatheredImages(const QString &text, const QString &entryFolder,
                           const QString &imagesFolder, bool htmlOutput, QSet<QString> &names);

} // namespace tl::publish
