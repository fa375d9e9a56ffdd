#pragma once

#include <QList>
#include <QString>
#include <QStringView>

// The text an editing rule works on: a string, the selected range and the
// replacements made so far. A rule reads the text and the selection and
// edits only through tl_replaceCharactersInRange, which a locked document
// refuses; the view replays the recorded replacements as one undo step.
namespace tl::editing {

struct TextRange
{
    qsizetype location = 0;
    qsizetype length = 0;
    qsizetype end() const { return location + length; }
    bool operator==(const TextRange &) const = default;
};

// One replacement, at a place in the text as it was after the ones before.
struct TextReplacement
{
    TextRange range;
    QString string;
    bool operator==(const TextReplacement &) const = default;
};

class EditorBuffer
{
public:
    explicit EditorBuffer(QString text, TextRange selection = {}, bool locked = false);

    const QString &text() const { return m_text; }
    qsizetype length() const { return m_text.size(); }
    TextRange selection() const { return m_selection; }
    void setSelection(TextRange selection);
    bool isLocked() const { return m_locked; }

    // Does nothing and answers false in a read-only or immutable document.
    bool tl_replaceCharactersInRange(TextRange range, const QString &string);

    const QList<TextReplacement> &replacements() const { return m_replacements; }

    // The platform's paragraphs: "\n", "\r\n", "\r" and U+2029 end one. The
    // range holds every paragraph the given range touches, terminators included.
    TextRange paragraphRange(TextRange range) const;
    TextRange paragraphRange(qsizetype at) const { return paragraphRange(TextRange{at, 0}); }
    // The same without the last paragraph's terminator.
    TextRange paragraphRangeTrimmed(TextRange range) const;
    QStringView textIn(TextRange range) const;
    QChar at(qsizetype index) const;

private:
    QString m_text;
    TextRange m_selection;
    bool m_locked;
    QList<TextReplacement> m_replacements;
};

bool isParagraphSeparator(QChar c);
// The paragraphs of `text` that `range` touches, terminators included.
TextRange paragraphRangeIn(QStringView text, TextRange range);
// Every paragraph separator of pasted or dropped text as "\n", the editor's own.
QString withNewlineParagraphs(const QString &text);
// Whether the text holds nothing but blanks, tabs and paragraph separators.
bool isBlank(QStringView text);

} // namespace tl::editing
