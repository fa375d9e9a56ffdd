#pragma once

#include "editing/palette.h"
#include "editing/text_buffer.h"

#include <QList>
#include <QStringView>
#include <functional>

// Markdown colouring without a syntax tree: an ordered sequence of regular
// expressions over one range of the text, later rules winning on the same
// characters, answered as attribute runs. The text never changes.
namespace tl::editing {

struct CharacterStyle
{
    ColorRole color = ColorRole::Base;
    float stroke = 0; // negative: bolder
    float slant = 0;
    bool strike = false;
    bool link = false; // the run's text is a link to itself
    bool operator==(const CharacterStyle &) const = default;
};

enum class Alignment : quint8 { Natural, RightToLeft };

struct ParagraphStyle
{
    Alignment alignment = Alignment::Natural;
    double lineHeightMultiple = 1;
    double headIndent = 0;
    double firstLineHeadIndent = 0;
    double tailIndent = 0;
    double tabInterval = 28;
    bool operator==(const ParagraphStyle &) const = default;
};

struct AttributeRun
{
    qsizetype start = 0;
    qsizetype length = 0;
    CharacterStyle style;
};

// The style of one paragraph, keyed by where it starts.
struct ParagraphRun
{
    qsizetype start = 0;
    qsizetype length = 0;
    ParagraphStyle style;
};

struct Highlighting
{
    TextRange range; // what was recomputed
    QList<AttributeRun> runs;
    QList<ParagraphRun> paragraphs;
};

enum class DocumentKind : quint8 { Markdown, Html, Opml, OtherText };

// Widths of texts in the editor's font at a stroke; the view measures, tests
// count characters.
using WidthMeasure = std::function<double(QStringView text, double stroke)>;

struct HighlightOptions
{
    bool highlightMarkdown = true;
    DocumentKind kind = DocumentKind::Markdown;
    bool autoIndentLists = true;             // AutoIndentLists
    bool ignoreCommentsForWordCount = false; // ignoreCommentsForWordCount
    bool multiMarkdown = false;              // the document's converter is 1
    bool printing = false;
    bool wikiLinksActive = false;          // WikiActivateLinksInPlaintext
    bool checkMixedTextDirections = false; // checkMixedTextDirections
    bool excluded = false;                 // the excluded tags list: base colour only
    double lineHeightMultiple = 1;
    double stroke = -3; // -5 on a high-density screen
    double lineFragmentPadding = 5;
    WidthMeasure width;
    // Whether a link target names an existing file.
    std::function<bool(QStringView target)> namesFile;
};

// The attributes of `range`; an end past the text falls back to `selection`.
Highlighting tl_highlightStringinRange(QStringView text, TextRange range, TextRange selection,
                                       const HighlightOptions &options);

// Right to left when Arabic or Hebrew letters are the majority of the first
// 400 characters.
Alignment alignmentForString(QStringView text);

// What to recompute after an edit that left `edited` (in the new text).
TextRange rangeToRecompute(QStringView text, TextRange edited);

} // namespace tl::editing
