#include "tasks/state_mirror.h"

#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"

namespace tl::tasks {

namespace {

// The source document a task link names, when it is a text document.
std::optional<QString> sourceOf(const QString &url)
{
    QString path = url;
    path.remove(QStringLiteral("tavelle://show/"));
    path = store::percentDecoded(path).value_or(path);
    path.remove(QStringLiteral("tavelle://"));
    path = path::appendingComponent(store::libraryRoot(), path);
    const QString extension = path::extension(path);
    if (!store::plainTextExtensions().contains(extension) && extension != u"html")
        return std::nullopt;
    return path;
}

// The title the source line holds: the task's name, or the first line of
// its text when the name was shortened on extraction.
QString titleOf(const QString &itemPath)
{
    const QString title = precomposed(path::deletingExtension(path::lastComponent(itemPath)));
    if (title.size() < 101 || !itemPath.endsWith(u"txt"))
        return title;
    const auto text = store::tl_stringWithContentsOfFile(itemPath);
    return text ? text->text.section(u'\n', 0, 0).trimmed() : title;
}

struct Mirror
{
    QString pattern;
    QString replacement;
};

// The pattern of the line in its former state, with group 1 its mark, and
// the mark of the new state.
std::optional<Mirror> mirrorFor(const QString &state, const QString &mark, const QString &title)
{
    const bool checkbox = mark == u"- [ ]";
    const QString escaped = store::tl_stringByEscapingWildcards(mark);
    if (state == u"done")
        return Mirror{QStringLiteral("(%1)[ \\t]+%2\\s*").arg(escaped, title),
                      checkbox ? QStringLiteral("- [x]") : QStringLiteral("✓")};
    if (state == u"canceled")
        return checkbox
                   ? Mirror{QStringLiteral("(- \\[x\\])[ \\t]+%1\\s*").arg(title),
                            QStringLiteral("- ")}
                   : Mirror{QStringLiteral("(✓)[ \\t]+%1\\s*").arg(title), QStringLiteral("×")};
    if (state == u"open")
        return Mirror{
            (checkbox ? QStringLiteral("(- )[ \\t]+%1\\s*") : QStringLiteral("(×)[ \\t]+%1\\s*"))
                .arg(title),
            mark};
    return std::nullopt;
}

} // namespace

void mirrorTaskStateIntoSource(const QString &itemPath, const QString &state)
{
    const QString url =
        store::tl_propertyForKey(itemPath, QLatin1String(tl::keys::property::URL)).toString();
    const QString mark =
        platform::settings().string(QLatin1String(keys::MarkTaskWithCharacter)).trimmed();
    if (mark.isEmpty() || !url.startsWith(u"tavelle://"))
        return;
    const std::optional<QString> source = sourceOf(url);
    if (!source)
        return;
    const std::optional<Mirror> mirror = mirrorFor(state, mark, titleOf(itemPath));
    if (!mirror)
        return;
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(*source);
    if (!file) {
        logLine(QStringLiteral("error: could not read %1").arg(*source));
        return;
    }
    if (file->text.isEmpty())
        return;

    const QString wrapped =
        source->endsWith(u"html") ? QStringLiteral(">\\s*%1<") : QStringLiteral("^\\s*%1\\s*$");
    // The title is not escaped: one that is no valid expression leaves the
    // source alone.
    const Regex line(wrapped.arg(mirror->pattern), RegexOption::AnchorsMatchLines);
    const std::optional<RegexMatch> match = line.match(file->text);
    if (!match || !match->hasGroup(1))
        return;
    QString text = file->text;
    text.replace(match->groupStart(1), match->groupLength(1), mirror->replacement);
    if (store::tl_writeToFile(text, *source, true, file->encoding))
        postFileModification(*source);
}

} // namespace tl::tasks
