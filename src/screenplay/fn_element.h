#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace tl::screenplay {

// One element of a script. Elements are shared: the paginator's pages hold
// the very objects of the script, and a change to one shows in both.
struct FNElement
{
    bool isCentered = false;
    bool isDualDialogue = false;
    QString elementType;
    QString elementText;
    std::optional<QString> sceneNumber; // "Scene Heading" only
    unsigned sectionDepth = 0;          // "Section Heading" only: the number of "#"

    static std::shared_ptr<FNElement> elementOfType(const QString &type, const QString &text);

    bool isType(const char *type) const { return elementType == QLatin1String(type); }
    // "Type: text", with " (centered)", " (dual dialogue)" or the section
    // depth behind the type, the first that applies.
    QString description() const;
};

using FNElementRef = std::shared_ptr<FNElement>;
using FNElementList = QList<FNElementRef>;

// One field of a title page: the lower-cased field name and the lines of its
// value. Consecutive fields written as a key alone on its line share one list
// of lines, which then holds the lines of both.
struct TitlePageField
{
    QString key;
    std::shared_ptr<QStringList> values;
};
using TitlePage = QList<TitlePageField>;

// The key a title page field is stored under: lower-cased, with "author"
// (and, where the caller allows it, "author(s)") as "authors".
QString titlePageKey(const QString &fieldName, bool acceptAuthorPlural);

} // namespace tl::screenplay
