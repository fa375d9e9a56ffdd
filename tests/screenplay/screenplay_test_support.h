#pragma once

#include "screenplay/fn_script.h"

#include <QDir>
#include <QStringList>
#include <ostream>

inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace tltest {

// The descriptions of the elements, one a line.
inline QString dump(const tl::screenplay::FNElementList &elements)
{
    QStringList lines;
    for (const auto &element : elements)
        lines.append(element->description());
    return lines.join(QLatin1Char('\n'));
}

// "key=value|value" per field, fields joined by "; ".
inline QString dump(const tl::screenplay::TitlePage &titlePage)
{
    QStringList fields;
    for (const auto &field : titlePage)
        fields.append(field.key + QLatin1Char('=') + field.values->join(QLatin1Char('|')));
    return fields.join(QStringLiteral("; "));
}

// The screenplays the tests read, in the source tree.
inline QString screenplayFixture(const QString &name)
{
    return QDir(QStringLiteral(SCREENPLAY_FIXTURES)).filePath(name);
}

inline QStringList screenplayFixtures()
{
    QStringList paths;
    const QDir folder(QStringLiteral(SCREENPLAY_FIXTURES));
    for (const QString &name : folder.entryList({QStringLiteral("*.fountain")}, QDir::Files))
        paths.append(folder.filePath(name));
    return paths;
}

} // namespace tltest
