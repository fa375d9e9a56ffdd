#include "sort_lines_dialog.h"

#include "editing/editor_settings.h"
#include "platform/settings.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tl::app::SortLinesDialog {

bool ask(QWidget *parent)
{
    platform::Settings &settings = platform::settings();
    QDialog sheet(parent);
    sheet.setWindowTitle(QStringLiteral("Sort"));
    auto *layout = new QVBoxLayout(&sheet);
    layout->addWidget(new QLabel(QStringLiteral("Select sort options"), &sheet));
    auto *caseSensitive = new QCheckBox(QStringLiteral("Case sensitive"), &sheet);
    caseSensitive->setChecked(settings.boolValue(editing::SortLinesCaseSensitiveKey));
    auto *descending = new QCheckBox(QStringLiteral("Descending"), &sheet);
    descending->setChecked(settings.boolValue(editing::SortLinesDescendingKey));
    layout->addWidget(caseSensitive);
    layout->addWidget(descending);
    auto *buttons = new QDialogButtonBox(&sheet);
    buttons->addButton(QStringLiteral("Sort"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &sheet, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &sheet, &QDialog::reject);
    layout->addWidget(buttons);
    if (sheet.exec() != QDialog::Accepted)
        return false;
    settings.set(editing::SortLinesCaseSensitiveKey, caseSensitive->isChecked());
    settings.set(editing::SortLinesDescendingKey, descending->isChecked());
    return true;
}

} // namespace tl::app::SortLinesDialog
