#pragma once

#include <QString>
#include <QStringList>

// The style sheet a document is shown and stored with: which sheet applies,
// its includes, and its variables filled in for the document.
namespace tl::convert {

// Every sheet: "CSS/NAME.css" for the program's own, "TLResources/CSS/..."
// for the library's, sorted together.
QStringList availableStyleSheets();
// The sheet reference for an item: the inherited CSS property, else the
// setting, if that sheet exists; else "CSS/Default Theme.css".
QString tl_applicableStyleSheet(const QString &path);
// The file a sheet reference names.
QString styleSheetFile(const QString &reference);
// "@tl_include: "NAME";" lines replaced by the sheets they name, each sheet
// taken once, so a cycle ends.
QString tl_styleSheetWithResolvedIncludes(const QString &sheet);
// The finished style element for an item, variables replaced.
QString tl_inheritedStyleSheet(const QString &path);

} // namespace tl::convert
