#include "publish_sheets.h"

#include "publish/publish_texts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tl::app {

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

// The sheet's frame: its text above the fields, Create and Cancel below.
QFormLayout *frame(QDialog *sheet, const char *message)
{
    auto *layout = new QVBoxLayout(sheet);
    auto *label = new QLabel(text(message), sheet);
    label->setWordWrap(true);
    layout->addWidget(label);
    layout->addSpacing(6);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    auto *buttons = new QDialogButtonBox(sheet);
    buttons->addButton(text(publish::texts::Create), QDialogButtonBox::AcceptRole)
        ->setDefault(true);
    buttons->addButton(text(publish::texts::Cancel), QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, sheet, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, sheet, &QDialog::reject);
    layout->addWidget(buttons);
    sheet->setMinimumWidth(460);
    return form;
}

} // namespace

CompileSheet::CompileSheet(const QString &proposedTitle, bool pdf, QWidget *parent)
    : QDialog(parent), m_proposed(proposedTitle), m_title(new QLineEdit(proposedTitle, this)),
      m_separator(new QComboBox(this)),
      m_autoFormat(new QCheckBox(QStringLiteral("Choose the format from the documents"), this)),
      m_pdf(new QCheckBox(QStringLiteral("Also create a PDF"), this))
{
    QFormLayout *form = frame(this, publish::texts::CompileDetails);
    m_title->setPlaceholderText(proposedTitle);
    m_separator->addItems({QStringLiteral("Two empty lines"), QStringLiteral("Horizontal rule"),
                           QStringLiteral("Page break")});
    m_autoFormat->setChecked(true);
    m_pdf->setChecked(pdf);
    form->addRow(QStringLiteral("Title:"), m_title);
    form->addRow(QStringLiteral("Separator:"), m_separator);
    form->addRow(QString(), m_autoFormat);
    form->addRow(QString(), m_pdf);
    connect(m_pdf, &QCheckBox::toggled, this, &CompileSheet::updateTitle);
    updateTitle();
}

void CompileSheet::updateTitle()
{
    setWindowTitle(
        text(m_pdf->isChecked() ? publish::texts::CompilePDFTitle : publish::texts::CompileTitle));
}

CompileChoice CompileSheet::choice() const
{
    const QString title = m_title->text().trimmed();
    return {title.isEmpty() ? m_proposed : title, m_separator->currentIndex(),
            m_autoFormat->isChecked(), m_pdf->isChecked()};
}

EBookSheet::EBookSheet(const publish::EBookAttributes &proposal, QWidget *parent)
    : QDialog(parent), m_title(new QLineEdit(proposal.title, this)),
      m_author(new QLineEdit(proposal.author, this)),
      m_subject(new QLineEdit(proposal.subject, this)),
      m_description(new QLineEdit(proposal.description, this)),
      m_rights(new QLineEdit(proposal.rights, this)), m_cover(new QLineEdit(proposal.cover, this))
{
    setWindowTitle(text(publish::texts::EBookTitle));
    QFormLayout *form = frame(this, publish::texts::EBookDetails);
    form->addRow(QStringLiteral("Title:"), m_title);
    form->addRow(QStringLiteral("Author:"), m_author);
    form->addRow(QStringLiteral("Subject:"), m_subject);
    form->addRow(QStringLiteral("Description:"), m_description);
    form->addRow(QStringLiteral("Rights:"), m_rights);
    auto *cover = new QHBoxLayout;
    m_cover->setPlaceholderText(QStringLiteral("Optional image"));
    auto *choose = new QPushButton(QStringLiteral("Choose..."), this);
    cover->addWidget(m_cover);
    cover->addWidget(choose);
    form->addRow(QStringLiteral("Cover:"), cover);
    connect(choose, &QPushButton::clicked, this, [this] {
        const QString image =
            QFileDialog::getOpenFileName(this, QStringLiteral("Cover Image"), m_cover->text(),
                                         QStringLiteral("Images (*.png *.jpg *.jpeg)"));
        if (!image.isEmpty())
            m_cover->setText(image);
    });
}

publish::EBookAttributes EBookSheet::attributes() const
{
    return {m_title->text().trimmed(),   m_author->text().trimmed(),
            m_subject->text().trimmed(), m_description->text().trimmed(),
            m_rights->text().trimmed(),  m_cover->text().trimmed()};
}

} // namespace tl::app
