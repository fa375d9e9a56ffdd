// tasks: task lists, task states, due dates and repeats.
#include "cli.h"
#include "convert/html_to_text.h"
#include "foundation/dates.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/task_records.h"
#include "tasks/date_texts.h"
#include "tasks/due_dates.h"
#include "tasks/due_tasks.h"
#include "tasks/markdown_checkbox.h"
#include "tasks/repeats.h"
#include "tasks/task_extraction.h"
#include "tasks/task_list.h"
#include "tasks/task_lists.h"

#include <QFileInfo>
#include <algorithm>

namespace tl::cli {

namespace {

const QString kDateOnly = QStringLiteral("date-only");
const QString kClear = QStringLiteral("clear");
const QString kNone = QStringLiteral("none");
const QString kLookAhead = QStringLiteral("lookahead");
const QString kCleanup = QStringLiteral("cleanup");
const QString kMode = QStringLiteral("mode");
const QString kNewBook = QStringLiteral("new-book");

struct Action
{
    const char *name;
    const char *arguments;
    // The item argument is a book, a document in a task list or any
    // document; none for the library-wide actions.
    enum class Target { None, Book, Task, Document } target;
    std::function<int(const QString &, const QStringList &, const QCommandLineParser &, bool)> run;
};

QString stateOf(const QString &task)
{
    const QVariantMap record = tasks::tl_getAllTaskDetails(task).value_or(QVariantMap());
    return record.value(QStringLiteral("State"), QStringLiteral("open")).toString();
}

// A stated time is local unless it names its zone; a bare date or one left
// at midnight means the day without an alert time.
std::optional<QDateTime> dueDateArgument(const QString &text, bool dateOnly)
{
    const QDate day = QDate::fromString(text, Qt::ISODate);
    if (day.isValid() && text.size() == 10)
        return tasks::dateWithoutAlertTime(day);
    if (dateOnly)
        return std::nullopt;
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    if (!date.isValid())
        return std::nullopt;
    return date == tasks::tl_thatDayMidnight(date) ? date.addSecs(60) : date;
}

int setDue(const QString &task, const QStringList &rest, const QCommandLineParser &parser, bool)
{
    if (parser.isSet(kClear)) {
        if (!rest.isEmpty())
            return fail(QStringLiteral("usage: tavelle tasks due PATH --clear"), Usage);
        tasks::tl_clearDueDate(task);
        return Success;
    }
    if (rest.size() != 1)
        return fail(QStringLiteral("usage: tavelle tasks due PATH DATE|--date-only DATE|--clear"),
                    Usage);
    const std::optional<QDateTime> date = dueDateArgument(rest[0], parser.isSet(kDateOnly));
    if (!date)
        return fail(QStringLiteral("Not an ISO 8601 date: %1").arg(rest[0]), Usage);
    tasks::tl_setDueDate(task, *date);
    return Success;
}

int setRepeat(const QString &task, const QStringList &rest, const QCommandLineParser &parser,
              bool json)
{
    if (parser.isSet(kNone)) {
        tasks::tl_setRepeatDetails(task, {});
    } else {
        static const QStringList types{QStringLiteral("when due"), QStringLiteral("when done")};
        static const QStringList units{"hour", "day", "week", "month", "year"};
        bool numeric = false;
        const qulonglong factor = rest.value(2).toULongLong(&numeric);
        if (rest.size() != 3 || !types.contains(rest[0]) || !units.contains(rest[1]) || !numeric ||
            factor == 0)
            return fail(QStringLiteral("usage: tavelle tasks repeat PATH \"when due\"|\"when "
                                       "done\" hour|day|week|month|year N|--none"),
                        Usage);
        tasks::tl_setRepeatDetails(task, {rest[0], rest[1], QString::number(factor)});
    }
    printValue(tasks::tl_readableRepeatDetails(task), json);
    return Success;
}

QVariantMap dueRow(const store::ListRow &row)
{
    return {{QStringLiteral("path"), row.path},
            {QStringLiteral("title"), row.title},
            {QStringLiteral("DueDate"), row.dueDate},
            {QStringLiteral("due"), tasks::tl_fancyWeekdayString(row.dueDate)},
            {QStringLiteral("taskIcon"), row.taskIcon}};
}

int listDue(const QString &, const QStringList &, const QCommandLineParser &parser, bool json)
{
    std::optional<qint64> lookAhead;
    if (parser.isSet(kLookAhead)) {
        bool numeric = false;
        lookAhead = parser.value(kLookAhead).toLongLong(&numeric);
        if (!numeric)
            return fail(QStringLiteral("Not a number of days: %1").arg(parser.value(kLookAhead)),
                        Usage);
    }
    QList<store::ListRow> rows = tasks::tl_arrayOfDueTasks(lookAhead).rows;
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto &a, const auto &b) { return a.dueDate < b.dueDate; });
    if (json) {
        QVariantList list;
        for (const store::ListRow &row : rows)
            list << dueRow(row);
        printValue(list, true);
        return Success;
    }
    for (const store::ListRow &row : rows)
        printLine(row.path + u'\t' + tasks::tl_fancyWeekdayString(row.dueDate));
    return Success;
}

// The text a document shows: the plain text of a formatted page, unless
// it keeps its Markdown source.
std::optional<store::DecodedText> shownText(const QString &document)
{
    std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(document);
    const QString extension = QFileInfo(document).suffix();
    if (file && extension.startsWith(u"htm") &&
        !(extension == u"html" &&
          !store::tl_propertyForKey(document, QLatin1String(keys::property::Markdown))
               .toString()
               .isEmpty()))
        file->text = convert::tl_htmlToPlainText(file->text);
    return file;
}

int extract(const QString &document, const QStringList &rest, const QCommandLineParser &parser,
            bool json)
{
    bool numeric = !parser.isSet(kMode);
    const int mode = parser.isSet(kMode) ? parser.value(kMode).toInt(&numeric) : 4;
    if (!rest.isEmpty() || !numeric || mode < 0 || mode > 4)
        return fail(QStringLiteral("usage: tavelle tasks extract DOC [--mode 0-4] [--new-book]"),
                    Usage);
    const auto extractionMode = tasks::ExtractionMode(mode);
    if (extractionMode == tasks::ExtractionMode::MarkedLines && tasks::taskMarker().isEmpty())
        return fail(QStringLiteral("No task marker set (markTaskWithCharacter)"));
    const std::optional<store::DecodedText> file = shownText(document);
    if (!file)
        return fail(QStringLiteral("Cannot read %1").arg(document));
    QStringList created;
    tasks::tl_extractTasksToPath(file->text, document, extractionMode, file->encoding,
                                 parser.isSet(kNewBook), &created);
    printList(created, json);
    return Success;
}

int checkbox(const QString &document, const QStringList &rest, const QCommandLineParser &, bool)
{
    bool numeric = false;
    const qsizetype pos = rest.value(1).toLongLong(&numeric);
    if (rest.size() != 2 || !numeric || pos < 0)
        return fail(QStringLiteral("usage: tavelle tasks checkbox DOC TASK POS"), Usage);
    switch (tasks::toggleMarkdownCheckboxForTask(document, rest[0], pos)) {
    case tasks::CheckboxToggle::Toggled:
        return Success;
    case tasks::CheckboxToggle::Unchanged:
        return fail(QStringLiteral("Nothing to toggle in %1").arg(document));
    case tasks::CheckboxToggle::NotFound:
        break;
    }
    return fail(QStringLiteral("Unable to identify task in Plain Text: %1").arg(rest[0]));
}

const std::vector<Action> &actions()
{
    using T = Action::Target;
    static const std::vector<Action> list{
        {"enable", "BOOK", T::Book,
         [](const QString &book, const QStringList &, const QCommandLineParser &, bool) {
             if (!store::tl_bookIsTasklist(book)) {
                 tasks::tl_toggleTasklistKeepingDetails(book, true);
                 tasks::updateListOfTasklistRemovingAdding(QString(), book);
             }
             return int(Success);
         }},
        {"disable", "BOOK", T::Book,
         [](const QString &book, const QStringList &, const QCommandLineParser &, bool) {
             if (store::tl_bookIsTasklist(book)) {
                 tasks::tl_toggleTasklistKeepingDetails(book, true);
                 tasks::updateListOfTasklistRemovingAdding(book, QString());
             }
             return int(Success);
         }},
        {"reset", "BOOK", T::Book,
         [](const QString &book, const QStringList &, const QCommandLineParser &, bool) {
             if (!store::tl_bookIsTasklist(book))
                 return fail(QStringLiteral("Not a task list: %1").arg(book));
             tasks::tl_resetTasklist(book);
             return int(Success);
         }},
        {"toggle", "PATH", T::Task,
         [](const QString &task, const QStringList &, const QCommandLineParser &, bool json) {
             tasks::tl_toggleTask(task);
             const QString state = stateOf(task);
             // The command ends before the delayed repeat would come round.
             const QVariantMap record = tasks::tl_getAllTaskDetails(task).value_or(QVariantMap());
             if (state == u"done" &&
                 !record.value(QStringLiteral("RepeatType")).toString().isEmpty())
                 tasks::tl_addRepeatingTask(task);
             printValue(state, json);
             return int(Success);
         }},
        {"exclude", "PATH", T::Task,
         [](const QString &task, const QStringList &, const QCommandLineParser &, bool json) {
             tasks::tl_toggleItemIsTask(task);
             printValue(stateOf(task), json);
             return int(Success);
         }},
        {"show", "PATH", T::Task,
         [](const QString &task, const QStringList &, const QCommandLineParser &, bool json) {
             QVariantMap shown = tasks::tl_getAllTaskDetails(task).value_or(QVariantMap());
             shown.insert(QStringLiteral("icon"), store::tl_iconForTask(task));
             printValue(shown, json);
             return int(Success);
         }},
        {"due", "PATH DATE|--date-only DATE|--clear", T::Task, setDue},
        {"repeat", "PATH \"when due\"|\"when done\" UNIT N|--none", T::Task, setRepeat},
        {"list", "[--lookahead N]", T::None, listDue},
        {"lists", "", T::None,
         [](const QString &, const QStringList &, const QCommandLineParser &, bool json) {
             printList(tasks::tl_listOfTasklists(), json);
             return int(Success);
         }},
        {"recount", "BOOK [--cleanup]", T::Book,
         [](const QString &book, const QStringList &, const QCommandLineParser &parser, bool json) {
             if (!store::tl_bookIsTasklist(book))
                 return fail(QStringLiteral("Not a task list: %1").arg(book));
             printValue(tasks::tl_correctTaskCountAtPathWithCleanup(book, parser.isSet(kCleanup)),
                        json);
             return int(Success);
         }},
        {"extract", "DOC [--mode 0-4] [--new-book]", T::Document, extract},
        {"checkbox", "DOC TASK POS", T::Document, checkbox},
    };
    return list;
}

QString usage()
{
    QStringList lines;
    for (const Action &action : actions())
        lines << QStringLiteral("  tavelle tasks %1 %2")
                     .arg(QLatin1String(action.name), QLatin1String(action.arguments))
                     .trimmed();
    return lines.join(u'\n');
}

QString actionNames()
{
    QStringList names;
    for (const Action &action : actions())
        names << QLatin1String(action.name);
    return names.join(QStringLiteral(", "));
}

void describeTasks(QCommandLineParser &p)
{
    p.setApplicationDescription(
        QStringLiteral("Task lists, task states, due dates, "
                       "repeats and tasks from text. Dates are ISO 8601 in local time.\n\n") +
        usage());
    p.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("One of: ") + actionNames());
    p.addOption({kDateOnly, QStringLiteral("due: the date without an alert time.")});
    p.addOption({kClear, QStringLiteral("due: remove the due date and the repeat.")});
    p.addOption({kNone, QStringLiteral("repeat: remove the repeat.")});
    p.addOption({kLookAhead,
                 QStringLiteral("list: 0 overdue only, 1 to the end of today, 2 to 5 one, three, "
                                "five or seven days more, other N that many days."),
                 QStringLiteral("N")});
    p.addOption({kCleanup, QStringLiteral("recount: drop the records of files that are gone.")});
    p.addOption({kMode,
                 QStringLiteral("extract: 0 the whole document, 1 lines, 2 paragraphs, 3 pieces "
                                "between rules, 4 marked lines (the default)."),
                 QStringLiteral("MODE")});
    p.addOption({kNewBook, QStringLiteral("extract: into a task list named after the document.")});
}

int runTasks(const QCommandLineParser &parser, const Invocation &in)
{
    const QString name = in.arguments.value(0);
    const auto action = std::find_if(actions().begin(), actions().end(),
                                     [&](const Action &a) { return name == a.name; });
    if (action == actions().end())
        return fail(QStringLiteral("Unknown action: %1 (one of %2)").arg(name, actionNames()),
                    Usage);
    QStringList rest = in.arguments.mid(1);
    QString target;
    if (action->target != Action::Target::None) {
        if (rest.isEmpty())
            return fail(QStringLiteral("usage: tavelle tasks %1 %2")
                            .arg(QLatin1String(action->name), QLatin1String(action->arguments)),
                        Usage);
        const bool book = action->target == Action::Target::Book;
        const std::optional<QString> path =
            itemInLibrary(rest.takeFirst(), book ? Inside::RootAllowed : Inside::BelowRoot);
        if (!path)
            return Failure;
        if (book ? !store::tl_pathIsBook(*path) : !QFileInfo(*path).isFile())
            return fail(
                QString::fromLatin1(book ? "Not a book: %1" : "Not a document: %1").arg(*path));
        if (action->target == Action::Target::Task &&
            !store::tl_bookIsTasklist(QFileInfo(*path).path()))
            return fail(QStringLiteral("Not in a task list: %1").arg(*path));
        target = *path;
    }
    return action->run(target, rest, parser, in.json);
}

} // namespace

// In commands_reminders.cpp.
Command remindersCommand();

const std::vector<Command> &tasksCommands()
{
    static const std::vector<Command> commands{
        {"tasks", "Task lists, task states, due dates, repeats and tasks from text.", true,
         describeTasks, runTasks},
        remindersCommand(),
    };
    return commands;
}

} // namespace tl::cli
