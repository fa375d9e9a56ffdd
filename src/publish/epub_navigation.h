#pragma once

#include <QString>

// The e-book's table of contents: a navigation point for each heading of
// levels 1 to 3, nested by level, with an anchor before the heading.
namespace tl::publish {

class EPubNavigation
{
public:
    // The counter numbers manifest items and navigation points alike.
    explicit EPubNavigation(int &counter) : m_counter(counter) {}

    // Adds the page's headings to the map and answers the page with their
    // anchors; href is the page as links name it.
    QString addHeadings(const QString &page, const QString &href);
    // The navigation points of the whole book, all of them closed.
    QString closedNavMap() const;

private:
    QString navPoint(const QString &label, const QString &source);

    int &m_counter;
    int m_anchor = 1;
    int m_playOrder = 1;
    int m_level = 0;
    QString m_points;
};

} // namespace tl::publish
