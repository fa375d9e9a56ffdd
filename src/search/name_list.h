#pragma once

#include <QString>
#include <QStringMatcher>
#include <vector>

// The folded names of the indexed items, held in memory: finding a substring
// in every name is one pass over one string, not a scan of the table.
namespace tl::search::detail {

class NameList
{
public:
    void clear();
    // Names are added in ascending order of their items' ids.
    void add(qint64 id, QStringView foldedName);
    // The ids of the items whose name holds the text, ascending.
    std::vector<qint64> idsContaining(const QString &foldedText) const;

private:
    // Every name followed by a line break; m_starts[i] is where name i begins.
    QString m_names;
    std::vector<qsizetype> m_starts;
    std::vector<qint64> m_ids;
};

} // namespace tl::search::detail
