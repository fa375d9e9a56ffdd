#include "contexts/context_words.h"

#include "contexts/context_keys.h"
#include "contexts/tag_files.h"
#include "foundation/regex.h"
#include "platform/settings.h"
#include "store/log.h"

#include <QHash>
#include <mutex>

namespace tl::contexts {

namespace {

// Each marker as a code point escape, so that "]", "^", "-", "\" and any
// other character stand for themselves inside the character class.
QString escapedForCharacterClass(const QString &markers)
{
    QString escaped;
    for (const char32_t c : markers.toUcs4())
        escaped += QStringLiteral("\\x{%1}").arg(quint32(c), 0, 16);
    return escaped;
}

// A word begins after white space or at a line start with one marker not
// followed by a second, and runs lazily up to a comma, semicolon, white space
// or line end.
Regex contextWordExpression(const QString &markers)
{
    static std::mutex mutex;
    static QHash<QString, Regex> compiled;
    const std::lock_guard lock(mutex);
    auto it = compiled.constFind(markers);
    if (it != compiled.constEnd())
        return *it;
    const QString m = escapedForCharacterClass(markers);
    const Regex re(QStringLiteral("(?<!\\S)([%1](?![%1])\\S+?)(?=,|;|\\s|$)").arg(m),
                   RegexOption::AnchorsMatchLines);
    compiled.insert(markers, re);
    return re;
}

// "- Buy milk @done": the done notation of TaskPaper closes the line.
bool isTaskPaperDone(const QString &text, const RegexMatch &match)
{
    const QString word = match.capturedString(text, 1);
    if (word != QLatin1String(keys::DoneWord))
        return false;
    qsizetype start = match.start();
    while (start > 0 && !Regex::isLineEnd(text.at(start - 1)))
        --start;
    qsizetype end = match.end();
    while (end < text.size() && !Regex::isLineEnd(text.at(end)))
        ++end;
    const QString line = text.mid(start, end - start).trimmed();
    if (!line.startsWith(u'-') || !line.endsWith(word))
        return false;
    logLine(QStringLiteral("ignoring TP @done notation!"));
    return true;
}

// Trailing punctuation is cut off, but a closing bracket stays when its
// opening partner stands in the word.
QString withoutTrailingPunctuation(QString word)
{
    QString strip = QStringLiteral(",;.:([{");
    if (!word.contains(u'['))
        strip += u']';
    if (!word.contains(u'('))
        strip += u')';
    if (!word.contains(u'{'))
        strip += u'}';
    while (!word.isEmpty() && strip.contains(word.back()))
        word.chop(1);
    return word;
}

} // namespace

TagSet tl_extractTagsFromString(const QString &text, const QString &markers,
                                const QStringList &excluded)
{
    TagSet tags;
    if (markers.isEmpty() || text.isEmpty())
        return tags;
    const Regex re = contextWordExpression(markers);
    for (const RegexMatch &match : re.allMatches(text)) {
        if (isTaskPaperDone(text, match))
            continue;
        const QString word = withoutTrailingPunctuation(match.capturedString(text, 1).trimmed());
        if (word.size() >= 2)
            tags.insert(word);
    }
    for (const QString &word : excluded)
        tags.remove(word);
    return tags;
}

TagSet tl_extractTagsFromString(const QString &text)
{
    return tl_extractTagsFromString(text, contextMarkers(), readExcludedTags());
}

QString contextMarkers()
{
    const QString markers = platform::settings().string(QLatin1String(keys::ContextMarkers));
    return markers.isEmpty() ? QLatin1String(keys::DefaultMarkers) : markers;
}

bool contextsExtractedAutomatically()
{
    platform::Settings &s = platform::settings();
    return s.boolValue(QLatin1String(keys::ContextsEnabled)) &&
           s.boolValue(QLatin1String(keys::ExtractContextsAutomatically));
}

} // namespace tl::contexts
