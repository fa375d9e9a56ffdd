#pragma once

#include "tasks/due_date_picker.h"

#include <QDialog>

class QCalendarWidget;
class QComboBox;
class QDateEdit;
class QDateTimeEdit;
class QPushButton;
class QLabel;
class QSpinBox;
class QTimeEdit;

// The due-date dialog: a calendar, a date field and a time field that
// follow one another, and the repeat controls. It starts from the first
// item and answers the button pressed with the moment and the repeat.
namespace tl::app {

class DueDateDialog : public QDialog
{
    Q_OBJECT
public:
    DueDateDialog(const QStringList &items, QWidget *parent = nullptr);

    tasks::DueDateChoice choice() const { return m_choice; }
    QDateTimeEdit *dateField() const;
    QTimeEdit *timeField() const { return m_time; }
    QComboBox *typeSelector() const { return m_type; }
    QSpinBox *factorField() const { return m_factor; }
    QComboBox *unitSelector() const { return m_unit; }
    // The button with the text: "Set", "Clear" or "Cancel".
    QPushButton *button(const QString &text) const;

    // Shows the dialog for the items and applies what the user chose.
    static void editItems(const QStringList &items, QWidget *parent);

private:
    void showDate(const QDate &date);
    void showRepeat();
    void finish(tasks::DueDateChoice::Button button);

    tasks::RepeatControls m_repeat;
    tasks::DueDateChoice m_choice;
    QCalendarWidget *m_calendar;
    QDateEdit *m_date;
    QTimeEdit *m_time;
    QComboBox *m_type;
    QSpinBox *m_factor;
    QComboBox *m_unit;
    QLabel *m_every;
};

} // namespace tl::app
