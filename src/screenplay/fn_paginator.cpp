#include "screenplay/fn_paginator.h"

#include "foundation/regex.h"
#include "screenplay/courier_lines.h"
#include "screenplay/element_types.h"

#include <array>
#include <cstdlib>

namespace tl::screenplay {

namespace {

struct Layout
{
    const char *type;
    int linesBefore;
    int leftMargin;
    int width;
};

const std::array<Layout, 7> kLayouts{{
    {type::SceneHeading, 2, 106, 430},
    {type::Action, 1, 106, 430},
    {type::General, 1, 106, 430},
    {type::Character, 1, 247, 250},
    {type::Dialogue, 0, 177, 250},
    {type::Parenthetical, 0, 205, 212},
    {type::Transition, 1, 106, 430},
}};

Layout layoutOf(const FNElement &element)
{
    for (const Layout &layout : kLayouts)
        if (element.isType(layout.type))
            return layout;
    return {nullptr, 0, 0, 0};
}

// Courier 12 on the default page.
constexpr int kLineHeight = 12;
constexpr QSizeF kDefaultPage(612, 792);
constexpr int kFootAndHead = 145;

const QString kMore = QStringLiteral("(MORE)");

FNElementRef newElement(const char *type, const QString &text)
{
    return FNElement::elementOfType(QLatin1String(type), text);
}

// One run of the paginator: the page being filled, the block of elements
// that must stay together, and their heights.
class Run
{
public:
    Run(const FNPaginator::LineCounter &lineCount, QList<FNElementList> &pages, int pageLimit)
        : m_lineCount(lineCount), m_pages(pages), m_limit(pageLimit)
    {
    }

    void place(const FNElementList &elements);

private:
    int height(const FNElement &e, int width) const
    {
        return m_lineCount(e.elementText, width) * kLineHeight;
    }
    int height(const FNElement &e) const { return height(e, layoutOf(e).width); }
    static int spacing(const FNElement &e) { return kLineHeight * layoutOf(e).linesBefore; }

    void closePage()
    {
        m_pages.append(m_page);
        m_page.clear();
    }
    void flush()
    {
        m_page.append(m_block);
        m_block.clear();
        m_blockHeight = 0;
    }
    void plainBreak(int spacing)
    {
        closePage();
        m_pageHeight = m_blockHeight - spacing;
        flush();
    }
    // A block that overflows the page and begins with a cue.
    void splitDialogue(int overflow, int spacing);
    void splitAtParenthetical(qsizetype j);
    void splitSpeech(qsizetype j, int room);
    int heightsOf(const FNElementList &elements) const
    {
        int sum = 0;
        for (const FNElementRef &e : elements)
            sum += height(*e);
        return sum;
    }

    const FNPaginator::LineCounter &m_lineCount;
    QList<FNElementList> &m_pages;
    const int m_limit;
    FNElementList m_page;
    FNElementList m_block;
    int m_blockHeight = 0;
    int m_pageHeight = 0;
    int m_firstOfPair = -1; // the first half's block height of a dual dialogue
};

void Run::place(const FNElementList &elements)
{
    for (qsizetype i = 0; i < elements.size(); ++i) {
        const FNElementRef &element = elements.at(i);
        const bool hasNext = i + 1 < elements.size();
        if (element->isType(type::PageBreak)) {
            m_page.append(m_block);
            m_block.clear();
            m_page.append(element);
            closePage();
            m_pageHeight = 0;
            continue;
        }
        const int h = height(*element);
        if (h < 1)
            continue; // no glyphs: on no page at all
        const int space = spacing(*element);
        m_blockHeight += h + (m_page.isEmpty() ? 0 : space);

        if (element->isType(type::SceneHeading) && hasNext) {
            // A heading that would be left at the foot goes with what follows.
            const int next = height(*elements.at(i + 1));
            if (m_blockHeight + m_pageHeight + next >= m_limit && next >= kLineHeight)
                m_block.append(newElement(type::PageBreak, QString()));
            m_block.append(element);
            continue;
        }
        m_block.append(element);
        if (element->isType(type::Character) && hasNext) {
            const int width = layoutOf(*element).width;
            while (i + 1 < elements.size() && (elements.at(i + 1)->isType(type::Dialogue) ||
                                               elements.at(i + 1)->isType(type::Parenthetical))) {
                ++i;
                m_blockHeight += height(*elements.at(i), width);
                m_block.append(elements.at(i));
            }
            // The second speech of a pair counts only by what it adds.
            if (element->isDualDialogue && m_firstOfPair < 0) {
                m_firstOfPair = m_blockHeight;
            } else if (element->isDualDialogue) {
                m_blockHeight = std::abs(m_firstOfPair - m_blockHeight);
                m_firstOfPair = -1;
            }
        }

        const int total = m_blockHeight + m_pageHeight;
        if (total <= m_limit) {
            m_pageHeight = total;
            flush();
            continue;
        }
        const int overflow = total - m_limit;
        if (!m_block.first()->isType(type::Character) || overflow < 4 * kLineHeight)
            plainBreak(space);
        else
            splitDialogue(overflow, space);
    }
    m_page.append(m_block);
    if (!m_page.isEmpty())
        m_pages.append(m_page);
}

void Run::splitDialogue(int overflow, int spacing)
{
    // Counted from the top of the block.
    qsizetype j = 0;
    for (int sum = 0; j < m_block.size() - 1; ++j) {
        sum += height(*m_block.at(j)) + Run::spacing(*m_block.at(j));
        if (sum >= overflow)
            break;
    }
    if (j == 0) {
        plainBreak(spacing);
        return;
    }
    if (m_block.at(j)->isType(type::Parenthetical)) {
        if (j < 2)
            flush(); // no split: the page runs over its limit
        else
            splitAtParenthetical(j);
        return;
    }
    const int room = m_limit - (2 * kLineHeight + m_pageHeight);
    if (room < 5 * kLineHeight) {
        // The block waits for the next page, growing.
        closePage();
        m_pageHeight = m_blockHeight - spacing;
        m_blockHeight = 0;
        return;
    }
    splitSpeech(j, room);
}

void Run::splitAtParenthetical(qsizetype j)
{
    m_page.append(m_block.first(j));
    m_page.append(newElement(type::Character, kMore));
    closePage();
    // The very cue on the closed page reads the same.
    FNElement &cue = *m_block.first();
    cue.elementText = QStringLiteral("%1 (CONT'D)").arg(cue.elementText);
    const FNElementList carried = FNElementList{m_block.first()} + m_block.mid(j);
    m_page.append(carried);
    m_pageHeight = heightsOf(carried);
    m_block.clear();
    flush();
}

void Run::splitSpeech(qsizetype j, int room)
{
    static const Regex sentence(QStringLiteral("(.+?[\\.\\?\\!]+\\s*)"));
    const FNElement &speech = *m_block.at(j);
    const int width = layoutOf(speech).width;

    int above = 0; // bare lines before plus heights, as the measure has it
    for (qsizetype k = 0; k < j; ++k)
        above += layoutOf(*m_block.at(k)).linesBefore + height(*m_block.at(k));
    QStringList sentences;
    for (const RegexMatch &m : sentence.allMatches(speech.elementText))
        sentences.append(m.capturedString(speech.elementText, 1));

    QString firstHalf;
    qsizetype last = -1;
    if (above < room) {
        for (qsizetype t = 0; t < sentences.size(); ++t) {
            last = t;
            if (m_lineCount(firstHalf + sentences.at(t), width) * kLineHeight >= room)
                break;
            firstHalf += sentences.at(t);
        }
    }
    if (firstHalf.isEmpty()) {
        closePage();
        m_page.append(m_block.mid(1, j - 1));
    } else {
        m_page.append(m_block.first(j));
        m_page.append(newElement(type::Dialogue, firstHalf));
        m_page.append(newElement(type::Character, kMore));
        closePage();
    }
    // The last sentence that was tried stands on both pages when it fitted.
    const FNElementList carried{
        newElement(type::Character, m_block.first()->elementText),
        newElement(type::Dialogue, sentences.mid(std::max<qsizetype>(last, 0)).join(QString()))};
    const FNElementList after = m_block.mid(j + 1);
    m_page.append(carried);
    m_page.append(after);
    m_pageHeight = heightsOf(carried) + heightsOf(after);
    m_block.clear();
    flush();
}

} // namespace

FNPaginator::FNPaginator(const FNScript &script, LineCounter lineCount)
    : m_elements(script.elements),
      m_lineCount(lineCount ? std::move(lineCount) : LineCounter(courierLineCount))
{
}

int FNPaginator::spaceBeforeForElement(const FNElement &element)
{
    return layoutOf(element).linesBefore;
}

int FNPaginator::leftMarginForElement(const FNElement &element)
{
    return layoutOf(element).leftMargin;
}

int FNPaginator::widthForElement(const FNElement &element)
{
    return layoutOf(element).width;
}

int FNPaginator::heightForString(QStringView text, int maxWidth, int lineHeight)
{
    return courierLineCount(text, maxWidth) * lineHeight;
}

void FNPaginator::paginate()
{
    paginateForSize(kDefaultPage);
}

void FNPaginator::paginateForSize(QSizeF size)
{
    Run(m_lineCount, m_pages, int(size.height()) - kFootAndHead).place(m_elements);
}

int FNPaginator::numberOfPages()
{
    if (m_pages.isEmpty())
        paginate();
    return int(m_pages.size());
}

FNElementList FNPaginator::pageAtIndex(qsizetype index)
{
    if (m_pages.isEmpty())
        paginate();
    return index >= 0 && index < m_pages.size() ? m_pages.at(index) : FNElementList();
}

} // namespace tl::screenplay
