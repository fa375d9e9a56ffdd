#include "tasks/due_date_picker.h"

#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "tasks/date_texts.h"
#include "tasks/due_dates.h"
#include "tasks/task_details.h"
#include "tasks/task_list.h"

namespace tl::tasks {

namespace {

constexpr int kWeek = 2;
constexpr double kSetDelay = 0.3;
constexpr double kClearDelay = 0.4;

} // namespace

QDateTime dueDatePickerStart(const QString &itemPath)
{
    const auto record = tl_getAllTaskDetails(itemPath);
    const auto due = record ? dueDateOf(*record) : std::nullopt;
    if (!due)
        return tl_thatDayMidnight(clock().now());
    return tl_dueDateHasAlertTime(*due) ? *due : tl_thatDayMidnight(*due);
}

QDateTime dueDateFromPicker(const QDateTime &picked)
{
    return picked == tl_thatDayMidnight(picked) ? picked.addSecs(60) : picked;
}

const QStringList &RepeatControls::types()
{
    static const QStringList names{QStringLiteral("when due"), QStringLiteral("when done")};
    return names;
}

const QStringList &RepeatControls::units()
{
    static const QStringList names{QStringLiteral("hour"), QStringLiteral("day"),
                                   QStringLiteral("week"), QStringLiteral("month"),
                                   QStringLiteral("year")};
    return names;
}

RepeatControls RepeatControls::fromDetails(const std::optional<QStringList> &details)
{
    RepeatControls controls;
    controls.details = details;
    if (!details || details->size() != 3)
        return controls;
    controls.type = int(types().indexOf(details->at(0))) + 1;
    controls.unit = int(std::max<qsizetype>(units().indexOf(details->at(1)), 0));
    controls.factor = details->at(2).toLongLong();
    return controls;
}

bool RepeatControls::selectType(int index)
{
    const bool starts = type == 0 && index != 0 && factor == 0;
    type = index;
    if (starts) {
        factor = 1;
        unit = kWeek;
    }
    compose();
    return starts;
}

void RepeatControls::selectUnit(int index)
{
    unit = index;
    compose();
}

void RepeatControls::setFactor(qint64 value)
{
    factor = value;
    compose();
}

QStringList RepeatControls::unitTitles() const
{
    QStringList titles;
    for (const QString &name : units())
        titles << repeatUnitWord(name, factor);
    return titles;
}

void RepeatControls::compose()
{
    if (type <= 0 || type > types().size()) {
        details = QStringList();
        return;
    }
    details = QStringList{types().at(type - 1), units().value(unit), QString::number(factor)};
}

void applyDueDateChoice(const QStringList &items, const DueDateChoice &choice)
{
    switch (choice.button) {
    case DueDateChoice::Button::Set: {
        const QDateTime due = dueDateFromPicker(choice.picked);
        for (const QString &item : items) {
            if (choice.repeat)
                tl_setRepeatDetails(item, *choice.repeat);
            Scheduler::main().schedule(QStringLiteral("setDueDate %1").arg(item), kSetDelay,
                                       [item, due] { tl_setDueDate(item, due); });
        }
        break;
    }
    case DueDateChoice::Button::Clear:
        for (const QString &item : items)
            Scheduler::main().schedule(QStringLiteral("clearDueDate %1").arg(item), kClearDelay,
                                       [item] { tl_clearDueDate(item); });
        break;
    case DueDateChoice::Button::Cancel:
        break;
    }
}

} // namespace tl::tasks
