#pragma once

// Texts of one shape repeated to a given size, each a shape that once made
// some step of the conversion read the text again for every repetition
// (in the spirit of cmark's pathological tests). The tests convert them at a
// moderate size and check the result; bench/markdown_pathological_bench
// reports the time per megabyte of each.

#include <QList>
#include <QString>
#include <algorithm>

namespace tltest {

struct PathologicalShape
{
    const char *name;
    QString piece; // repeated until the text has the size asked for
    // What the body holds once per piece, when it tells the piece was
    // converted; empty when the body is only checked to be there.
    QString perPiece;
    // The largest text worth converting, 0 for any. Discount itself reads on
    // to the end of the paragraph for every "[" and "<" that opens nothing:
    // those shapes stay small.
    qsizetype mostBytes = 0;
};

constexpr qsizetype kDiscountBound = 16 * 1024;

inline const QList<PathologicalShape> &pathologicalShapes()
{
    static const QList<PathologicalShape> shapes = {
        // Every heading the same id: each earlier one is numbered.
        {"identical headings", QStringLiteral("# A\n\n"), QStringLiteral("<h1 id=")},
        // One line: what is looked up to the line's end for each link.
        {"wiki links on one line", QStringLiteral("[[a]] "), QStringLiteral("<a href=\"a\">")},
        // Openings of highlights that never close.
        {"open highlights", QStringLiteral("==a "), QString()},
        {"closed highlights", QStringLiteral("==a== "), QStringLiteral("<mark>a</mark>")},
        {"open wiki links", QStringLiteral("[["), QString(), kDiscountBound},
        {"open inline notes", QStringLiteral("^[a "), QString(), kDiscountBound},
        {"open notes", QStringLiteral("[^a "), QString(), kDiscountBound},
        {"notes that are definitions", QStringLiteral("[^a [^a]: "), QString(), kDiscountBound},
        {"open note tags", QStringLiteral("<<fnote \"a "), QString(), kDiscountBound},
        {"fences", QStringLiteral("```\n"), QString()},
        {"code spans", QStringLiteral("`a` "), QStringLiteral("<code>a</code>")},
        {"page breaks", QStringLiteral("{{pagebreak}}\n\n"), QStringLiteral("pagebreak")},
        {"unbalanced brackets", QStringLiteral("[a "), QString(), kDiscountBound},
        {"backquotes", QStringLiteral("`"), QString()},
    };
    return shapes;
}

// The piece repeated to at least `bytes` characters, or to the shape's
// largest size.
inline QString pathologicalText(const PathologicalShape &shape, qsizetype bytes)
{
    if (shape.mostBytes > 0)
        bytes = std::min(bytes, shape.mostBytes);
    return shape.piece.repeated((bytes + shape.piece.size() - 1) / shape.piece.size());
}

} // namespace tltest
