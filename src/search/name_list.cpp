#include "search/name_list.h"

#include <algorithm>

namespace tl::search::detail {

void NameList::clear()
{
    m_names.clear();
    m_starts.clear();
    m_ids.clear();
}

void NameList::add(qint64 id, QStringView foldedName)
{
    m_starts.push_back(m_names.size());
    m_ids.push_back(id);
    m_names += foldedName;
    m_names += u'\n';
}

std::vector<qint64> NameList::idsContaining(const QString &foldedText) const
{
    std::vector<qint64> ids;
    const QStringMatcher matcher(foldedText);
    for (qsizetype at = matcher.indexIn(m_names); at >= 0;) {
        const auto name = std::upper_bound(m_starts.cbegin(), m_starts.cend(), at) - 1;
        const auto index = name - m_starts.cbegin();
        // The end of the name, before its line break: a match must lie inside
        // one name even when a name holds a line break itself.
        const qsizetype end =
            (index + 1 < qsizetype(m_starts.size()) ? m_starts[index + 1] : m_names.size()) - 1;
        if (at + foldedText.size() <= end) {
            ids.push_back(m_ids[index]);
            at = matcher.indexIn(m_names, end + 1);
        } else {
            at = matcher.indexIn(m_names, at + 1);
        }
    }
    return ids;
}

} // namespace tl::search::detail
