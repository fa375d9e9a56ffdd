#pragma once

#include "publish/document_compiler.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

// The sheets that ask for the details of a compile and of an e-book before
// the run; what they answer goes to the publishing core as it stands.
namespace tl::app {

struct CompileChoice
{
    QString title;
    int separator = 0;
    bool autoFormat = true;
    bool pdf = false;
};

class CompileSheet : public QDialog
{
    Q_OBJECT
public:
    CompileSheet(const QString &proposedTitle, bool pdf, QWidget *parent = nullptr);

    // The choice, the proposed title standing for an empty field.
    CompileChoice choice() const;

private:
    void updateTitle();

    QString m_proposed;
    QLineEdit *m_title;
    QComboBox *m_separator;
    QCheckBox *m_autoFormat;
    QCheckBox *m_pdf;
};

class EBookSheet : public QDialog
{
    Q_OBJECT
public:
    EBookSheet(const publish::EBookAttributes &proposal, QWidget *parent = nullptr);

    publish::EBookAttributes attributes() const;

private:
    QLineEdit *m_title;
    QLineEdit *m_author;
    QLineEdit *m_subject;
    QLineEdit *m_description;
    QLineEdit *m_rights;
    QLineEdit *m_cover;
};

} // namespace tl::app
