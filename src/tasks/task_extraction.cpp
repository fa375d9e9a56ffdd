#include "tasks/task_extraction.h"

#include "contexts/tag_database.h"
#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/first_line.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/plist_file.h"
#include "store/properties.h"
#include "store/task_records.h"
#include "tasks/due_dates.h"
#include "tasks/reminder_rebuild.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"
#include "tasks/task_list.h"
#include "tasks/task_lists.h"

#include <QDir>
#include <QFileInfo>
#include <array>

namespace tl::tasks {

namespace {

namespace P = tl::keys::property;
namespace S = tl::keys::setting;

struct StatePrefix
{
    const char16_t *text;
    // Steps through the cycle from open: two to done, three to canceled.
    int toggles;
};

// Tried in this order.
constexpr std::array<StatePrefix, 4> kStatePrefixes{{
    {u"(OK) ", 2},
    {u"✔ ", 2},
    {u"(X) ", 3},
    {u"✘ ", 3},
}};

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

QStringList pieceSplit(const QString &text, ExtractionMode mode, const QString &marker)
{
    switch (mode) {
    case ExtractionMode::Lines: {
        QStringList pieces;
        qsizetype start = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (Regex::isLineEnd(text[i])) {
                pieces << text.mid(start, i - start);
                start = i + 1;
            }
        }
        pieces << text.mid(start);
        return pieces;
    }
    case ExtractionMode::Paragraphs:
        return text.split(QStringLiteral("\n\n"));
    case ExtractionMode::RuledPieces: {
        static const Regex rule(QStringLiteral("\\n----+\\s*\\n"));
        return rule.replaceAll(text, QStringLiteral("\n----\n")).split(QStringLiteral("\n----\n"));
    }
    case ExtractionMode::MarkedLines: {
        const Regex line(
            QStringLiteral("^\\s*%1[ \\t]+(.*)$").arg(store::tl_stringByEscapingWildcards(marker)),
            RegexOption::AnchorsMatchLines);
        QStringList pieces;
        for (const RegexMatch &match : line.allMatches(text))
            pieces << match.capturedString(text, 1);
        return pieces;
    }
    case ExtractionMode::WholeDocument:
        break;
    }
    return {};
}

QString trimmedOf(const QString &text, QStringView characters)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && characters.contains(text[start]))
        ++start;
    while (end > start && characters.contains(text[end - 1]))
        --end;
    return text.mid(start, end - start);
}

// The folder the tasks go to: the inbox for marked lines when the user
// chose one, else a task list named after the document when asked for,
// else the document's own folder.
QString targetFolder(const QString &documentPath, ExtractionMode mode, bool inNewBook,
                     const QStringList &tags)
{
    const QString inbox = platform::settings().string(QLatin1String(S::DefaultInbox));
    if (mode == ExtractionMode::MarkedLines && setting(keys::ExtractTasksToInbox) &&
        !inbox.isEmpty()) {
        const QString folder = path::appendingComponent(store::libraryRoot(), inbox);
        return QFileInfo(folder).isDir() ? folder : store::libraryRoot();
    }
    if (!inNewBook)
        return path::deletingLastComponent(documentPath);
    const QString book = path::deletingExtension(documentPath).trimmed();
    if (!QFileInfo::exists(book)) {
        QDir().mkpath(book);
        if (!tags.isEmpty())
            store::tl_setProperty(book, tags, QLatin1String(P::Tags));
        store::tl_setCreationDate(book, store::tl_creationDate(documentPath));
    }
    const QString details = path::appendingComponent(book, QLatin1String(names::TasklistDetails));
    if (!QFileInfo::exists(details)) {
        store::writePlistFile(details, QVariantMap(), false);
        updateListOfTasklistRemovingAdding(QString(), book);
    }
    return book;
}

// The path a piece is written to, or nothing when a task with the same
// text stands there already under one of the names it would take.
std::optional<QString> freePathFor(const QString &folder, const QString &name, const QString &piece,
                                   store::TextEncoding encoding)
{
    QString candidate = path::appendingComponent(folder, name + QStringLiteral(".txt"));
    for (quint64 number = 1; QFileInfo::exists(candidate); ++number) {
        const auto existing = store::tl_stringWithContentsOfFile(candidate, encoding);
        if (existing && localizedCompare(*existing, piece) == 0)
            return std::nullopt;
        candidate =
            path::appendingComponent(folder, QStringLiteral("%1 %2.txt").arg(name).arg(number));
    }
    return candidate;
}

} // namespace

QString taskMarker()
{
    return platform::settings().string(QLatin1String(keys::MarkTaskWithCharacter)).trimmed();
}

QString tl_extractTasksToPath(const QString &text, const QString &documentPath, ExtractionMode mode,
                              store::TextEncoding encoding, bool inNewBook, QStringList *created)
{
    const QStringList tags = contexts::tl_verifiedTagList(documentPath);
    const QString target = targetFolder(documentPath, mode, inNewBook, tags);
    if (mode == ExtractionMode::WholeDocument) {
        const QString moved = path::appendingComponent(target, path::lastComponent(documentPath));
        if (moved != documentPath && store::tl_moveItemToPath(documentPath, moved) && created)
            *created << moved;
        return documentPath;
    }

    const QString targetName = path::lastComponent(target);
    const QString source = QStringLiteral("tavelle://show") +
                           store::percentEncodedForPath(store::tl_normalizedPath(documentPath));
    const QDateTime due = tl_thatDayMidnight(clock().now()).addSecs(60);
    qint64 n = 0;
    for (QString piece : pieceSplit(text, mode, taskMarker())) {
        if (localizedCompare(piece, targetName) == 0)
            continue;
        piece = piece.trimmed();
        int toggles = 0;
        for (const StatePrefix &prefix : kStatePrefixes) {
            const QString notation = QString::fromUtf16(prefix.text);
            if (piece.startsWith(notation)) {
                piece = piece.mid(notation.size());
                toggles = prefix.toggles;
                break;
            }
        }
        if (toggles == 0 && mode != ExtractionMode::MarkedLines)
            piece = trimmedOf(piece, u"\n-— •*");
        const QString name = store::tl_firstLineOfText(piece);
        if (piece.isEmpty() || name.isEmpty())
            continue;
        const std::optional<QString> task = freePathFor(target, name, piece, encoding);
        if (!task || !store::tl_writeToFile(piece, *task, false, encoding))
            continue;
        store::tl_setCreationDate(*task, clock().now().addSecs(n++));
        if (!tags.isEmpty())
            store::tl_setProperty(*task, tags, QLatin1String(P::Tags));
        if (setting(keys::AssignDefaultDueDate))
            tl_setDueDate(*task, due);
        if (setting(S::ContextsEnabled) && setting(S::ExtractContextsAutomatically))
            contexts::tl_collectTagsFromText(*task, piece);
        store::tl_setProperty(*task, source, QLatin1String(P::URL));
        for (int i = 0; i < toggles; ++i)
            tl_toggleTask(*task);
        postFileModification(*task);
        if (created)
            *created << *task;
    }
    if (n > 0)
        tl_repostAllNotifications();
    return documentPath;
}

QStringList tl_extractTasks(const QString &documentPath, const QString &text,
                            store::TextEncoding encoding)
{
    const QString marker = taskMarker();
    if (marker.isEmpty() ||
        !(text.contains(u'\n' + marker + u' ') || text.contains(u'\n' + marker + u'\t')))
        return {};
    QStringList created;
    tl_extractTasksToPath(text, documentPath, ExtractionMode::MarkedLines, encoding,
                          !store::tl_itemIsTask(documentPath), &created);
    return created;
}

} // namespace tl::tasks
