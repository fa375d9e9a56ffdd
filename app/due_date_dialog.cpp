#include "due_date_dialog.h"

#include "tasks/due_dates.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace tl::app {

using tasks::DueDateChoice;

DueDateDialog::DueDateDialog(const QStringList &items, QWidget *parent)
    : QDialog(parent),
      m_repeat(tasks::RepeatControls::fromDetails(
          items.isEmpty() ? std::nullopt : tasks::tl_repeatDetails(items.first()))),
      m_calendar(new QCalendarWidget(this)), m_date(new QDateEdit(this)),
      m_time(new QTimeEdit(this)), m_type(new QComboBox(this)), m_factor(new QSpinBox(this)),
      m_unit(new QComboBox(this)), m_every(new QLabel(QStringLiteral("every"), this))
{
    setObjectName(QStringLiteral("dueDateDialog"));
    setWindowTitle(QStringLiteral("Due Date"));
    auto *heading =
        new QLabel(QStringLiteral("Set Due Date, Alert Time and Repeat Interval"), this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    auto *text = new QLabel(
        QStringLiteral(
            "Adjust date and/or time. If you don't need an alert, leave the time a midnight."),
        this);
    text->setWordWrap(true);

    const QDateTime start =
        items.isEmpty() ? QDateTime() : tasks::dueDatePickerStart(items.first()).toLocalTime();
    m_calendar->setGridVisible(false);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_date->setDisplayFormat(QStringLiteral("ddd, d MMM yyyy"));
    m_time->setDisplayFormat(QStringLiteral("HH:mm"));
    m_time->setTime(start.time());
    showDate(start.date());
    // The three date views follow one another.
    connect(m_calendar, &QCalendarWidget::selectionChanged, this,
            [this] { showDate(m_calendar->selectedDate()); });
    connect(m_date, &QDateEdit::dateChanged, this, &DueDateDialog::showDate);

    m_type->addItem(QStringLiteral("Don't repeat"));
    for (const QString &type : tasks::RepeatControls::types())
        m_type->addItem(QStringLiteral("Repeat %1").arg(type));
    m_factor->setRange(0, 999);
    connect(m_type, &QComboBox::activated, this, [this](int index) {
        if (m_repeat.selectType(index))
            m_factor->setFocus();
        showRepeat();
    });
    connect(m_factor, &QSpinBox::valueChanged, this, [this](int value) {
        m_repeat.setFactor(value);
        showRepeat();
    });
    connect(m_unit, &QComboBox::activated, this, [this](int index) {
        m_repeat.selectUnit(index);
        showRepeat();
    });
    showRepeat();

    auto *when = new QHBoxLayout;
    when->addWidget(m_date, 1);
    when->addWidget(m_time);
    auto *repeat = new QHBoxLayout;
    repeat->addWidget(m_type);
    repeat->addWidget(m_every);
    repeat->addWidget(m_factor);
    repeat->addWidget(m_unit);
    repeat->addStretch(1);

    auto *buttons = new QDialogButtonBox(this);
    const std::pair<const char *, DueDateChoice::Button> kinds[] = {
        {"Set", DueDateChoice::Button::Set},
        {"Clear", DueDateChoice::Button::Clear},
        {"Cancel", DueDateChoice::Button::Cancel}};
    for (const auto &[title, kind] : kinds) {
        const auto role = kind == DueDateChoice::Button::Set      ? QDialogButtonBox::AcceptRole
                          : kind == DueDateChoice::Button::Cancel ? QDialogButtonBox::RejectRole
                                                                  : QDialogButtonBox::ResetRole;
        QPushButton *button = buttons->addButton(QString::fromLatin1(title), role);
        connect(button, &QPushButton::clicked, this, [this, kind = kind] { finish(kind); });
    }
    if (QPushButton *set = button(QStringLiteral("Set")))
        set->setDefault(true);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(text);
    layout->addWidget(m_calendar);
    layout->addLayout(when);
    layout->addLayout(repeat);
    layout->addWidget(buttons);
}

QDateTimeEdit *DueDateDialog::dateField() const
{
    return m_date;
}

QPushButton *DueDateDialog::button(const QString &text) const
{
    for (QPushButton *candidate : findChildren<QPushButton *>())
        if (candidate->text() == text)
            return candidate;
    return nullptr;
}

void DueDateDialog::showDate(const QDate &date)
{
    const QSignalBlocker quietCalendar(m_calendar);
    const QSignalBlocker quietDate(m_date);
    m_calendar->setSelectedDate(date);
    m_date->setDate(date);
}

void DueDateDialog::showRepeat()
{
    const QSignalBlocker quietFactor(m_factor);
    const QSignalBlocker quietUnit(m_unit);
    m_type->setCurrentIndex(m_repeat.type);
    m_factor->setValue(int(m_repeat.factor));
    m_unit->clear();
    m_unit->addItems(m_repeat.unitTitles());
    m_unit->setCurrentIndex(m_repeat.unit);
    for (QWidget *control : {static_cast<QWidget *>(m_every), static_cast<QWidget *>(m_factor),
                             static_cast<QWidget *>(m_unit)})
        control->setVisible(m_repeat.showsUnitAndFactor());
}

void DueDateDialog::finish(DueDateChoice::Button button)
{
    m_choice.button = button;
    m_choice.picked =
        QDateTime(m_date->date(), QTime(m_time->time().hour(), m_time->time().minute()),
                  Qt::LocalTime)
            .toUTC();
    m_choice.repeat = m_repeat.details;
    done(button == DueDateChoice::Button::Cancel ? QDialog::Rejected : QDialog::Accepted);
}

void DueDateDialog::editItems(const QStringList &items, QWidget *parent)
{
    if (items.isEmpty())
        return;
    DueDateDialog dialog(items, parent);
    dialog.exec();
    tasks::applyDueDateChoice(items, dialog.choice());
}

} // namespace tl::app
