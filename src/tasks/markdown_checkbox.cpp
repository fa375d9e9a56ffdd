#include "tasks/markdown_checkbox.h"

#include "foundation/regex.h"
#include "platform/alerts.h"
#include "store/document_file.h"
#include "store/log.h"

namespace tl::tasks {

namespace {

bool endsLine(QChar c)
{
    return c == u'\n' || c == u'\r' || c == u'\u0085' || c == u'\u2028' || c == u'\u2029';
}

// The whole lines touched by [start, end), with the terminator of the last.
std::pair<qsizetype, qsizetype> lineAround(const QString &text, qsizetype start, qsizetype end)
{
    while (start > 0 && !endsLine(text[start - 1]))
        --start;
    while (end < text.size() && !endsLine(text[end]))
        ++end;
    if (end < text.size())
        end += text.mid(end, 2) == u"\r\n" ? 2 : 1;
    return {start, end};
}

// Whether the line holds nothing but the checkbox and the task.
bool isCheckboxLineOf(QString line, const QString &task)
{
    line.remove(task);
    for (const char16_t *mark : {u"[ ]", u"[x]", u"[X]", u"-"})
        line.remove(QString::fromUtf16(mark));
    return line.trimmed().isEmpty();
}

QString toggled(const QString &line)
{
    static const Regex ticked(QStringLiteral("\\[(x|X)\\]"));
    if (!line.contains(u"[ ]"))
        return ticked.replaceAll(line, QStringLiteral("[ ]"));
    return QString(line).replace(QStringLiteral("[ ]"), QStringLiteral("[x]"));
}

} // namespace

CheckboxToggle toggleMarkdownCheckboxForTask(const QString &documentPath, const QString &task,
                                             std::optional<qsizetype> pos)
{
    QString t = task.section(u'\n', 0, 0);
    t.remove(QStringLiteral("- [ ]")).remove(QStringLiteral("- [x]"));
    t = t.trimmed();
    logLine(QStringLiteral("toggling: %1").arg(t));

    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(documentPath);
    if (!file || file->text.isEmpty())
        return CheckboxToggle::Unchanged;
    QString text = file->text;
    if (!text.contains(t)) {
        // The rendered item shows links as inline links; the source may
        // hold them as wiki links.
        static const Regex inlineLink(QStringLiteral("\\[(.+?)\\]\\((.+?)\\)"));
        t = inlineLink.replaceAll(t, QStringLiteral("[[$2]]"));
    }
    text.remove(u'\\');

    const Regex search(QStringLiteral("]\\s*") + Regex::escapePattern(t));
    std::optional<RegexMatch> match = search.match(text);
    for (qsizetype i = 0; match && i < pos.value_or(0); ++i)
        match = search.match(text, match->end());
    while (match) {
        const auto [start, end] = lineAround(text, match->start(), match->end());
        const QString line = text.mid(start, end - start);
        if (isCheckboxLineOf(line, t)) {
            text.replace(start, end - start, toggled(line));
            store::tl_writeToFile(text, documentPath, true, file->encoding);
            return CheckboxToggle::Toggled;
        }
        match = search.match(text, end);
    }
    platform::alerts().run({QStringLiteral("Unable to identify task in Plain Text"),
                            QStringLiteral("Please switch to plain text view to toggle the task."),
                            {QStringLiteral("OK")}});
    return CheckboxToggle::NotFound;
}

} // namespace tl::tasks
