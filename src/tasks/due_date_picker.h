#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

// The due-date dialog apart from its widgets: where the picker starts, what
// a picked moment stores, how the repeat controls compose their details,
// and what "Set" and "Clear" do to the items.
namespace tl::tasks {

// The moment the picker shows first for an item: today's midnight without a
// due date, that day's midnight for a date with no alert time, otherwise the
// due moment itself. So a stored 00:01 shows as midnight.
QDateTime dueDatePickerStart(const QString &itemPath);
// What "Set" stores: a moment left at its midnight means "no alert time"
// and moves one minute on, so midnight itself is never stored.
QDateTime dueDateFromPicker(const QDateTime &picked);

// The repeat controls: the type selector (none, "when due", "when done"),
// the unit selector ("hour", "day", "week", "month", "year") and the factor.
struct RepeatControls
{
    static const QStringList &types(); // after none, in selector order
    static const QStringList &units();

    int type = 0; // 0 none, else 1 + index in types()
    int unit = 0;
    qint64 factor = 0;
    // The details the dialog holds: the first item's until a control
    // changes, then composed anew from the controls; an empty list is none.
    std::optional<QStringList> details;

    static RepeatControls fromDetails(const std::optional<QStringList> &details);
    // Answers whether the factor field is to take the focus: leaving none
    // while the factor reads 0 starts at every 1 week.
    bool selectType(int index);
    void selectUnit(int index);
    void setFactor(qint64 value);
    // The unit and factor controls show only with a repeat chosen.
    bool showsUnitAndFactor() const { return type != 0; }
    // The unit selector's titles, plural above a factor of 1.
    QStringList unitTitles() const;

private:
    void compose();
};

// The dialog's answer for its items.
struct DueDateChoice
{
    enum class Button { Set, Clear, Cancel };
    Button button = Button::Cancel;
    QDateTime picked;
    std::optional<QStringList> repeat;
};

// "Set": the repeat details at once, the date 0.3 seconds later (so the
// details are written before the date that announces both). "Clear": the
// due date, and with it the repeat, 0.4 seconds later.
void applyDueDateChoice(const QStringList &items, const DueDateChoice &choice);

} // namespace tl::tasks
