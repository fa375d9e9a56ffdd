#pragma once

#include "screenplay/fn_script.h"

#include <QSizeF>
#include <functional>

namespace tl::screenplay {

// Breaks a script into pages the way a typed screenplay breaks, in integer
// points on a page of Courier 12: each element has a fixed text width, scene
// headings stay with what follows them, and long speeches are split at a
// sentence with "(MORE)" at the foot of the page and the cue repeated on the
// next. Pages hold the script's own element objects, and pagination changes
// some of them: a cue carried over gains " (CONT'D)" each time.
class FNPaginator
{
public:
    // The lines a text takes at a width in points.
    using LineCounter = std::function<int(QStringView text, int width)>;

    explicit FNPaginator(const FNScript &script, LineCounter lineCount = {});

    static int spaceBeforeForElement(const FNElement &element); // in lines
    static int leftMarginForElement(const FNElement &element);  // in points
    static int widthForElement(const FNElement &element);       // in points
    // The text's lines in Courier 12 at the width, times the line height.
    static int heightForString(QStringView text, int maxWidth, int lineHeight);

    // Appends the pages of the default page, 612 by 792 points.
    void paginate();
    // Appends the pages for a page size; the list is not emptied first.
    void paginateForSize(QSizeF size);
    // Paginates first when there are no pages yet.
    int numberOfPages();
    FNElementList pageAtIndex(qsizetype index);
    const QList<FNElementList> &pages() const { return m_pages; }

private:
    FNElementList m_elements;
    LineCounter m_lineCount;
    QList<FNElementList> m_pages;
};

} // namespace tl::screenplay
