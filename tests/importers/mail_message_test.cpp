#include "importers/mail_message.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using tl::importers::tl_emlToHTML;
using tl::importers::wrapTextInHTML;

const QString kSender = QStringLiteral(
    "<div style=\"padding: 0%; font-family: **TavelleFont**;\"><b><a href=\"mailto:ann@x.org\">"
    "Ann (Work) </a></b><br/>");

QString subjectBlock(const char *subject)
{
    return QStringLiteral("<div style=\"font-size: 1.1em; line-height: 1.1em; font-weight: "
                          "bold;\">%1</div><div style=\"padding-bottom: 20px;\"></div>\n")
        .arg(QString::fromUtf8(subject));
}

// A body in the mail page, with the header block behind its body tag.
QString page(const QString &text, const QString &block = {})
{
    QString html = wrapTextInHTML(text);
    if (block.isEmpty())
        return html;
    html.replace(QStringLiteral("**BodyPadding**"), QStringLiteral("5"));
    return html.insert(html.indexOf(u'>', html.indexOf(QStringLiteral("<body"))) + 1, block);
}

QString fileText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("-");
}

class MailMessage : public ::testing::Test
{
protected:
    QString convert(const char *message) const
    {
        return tl_emlToHTML(QString::fromUtf8(message), folder());
    }
    QString folder() const { return root.path() + QStringLiteral("/attachments"); }
    void SetUp() override { QDir().mkpath(folder()); }

    QTemporaryDir root;
};

TEST_F(MailMessage, SinglePartsAndTheHeaderBlock)
{
    struct Case
    {
        const char *name;
        const char *message;
        QString html;
    };
    const Case cases[] = {
        {"no blank line", "From: a\nSubject: b", QString()},
        {"sender, recipient and encoded subject above an HTML body",
         "From: \"Ann \\(Work\\)\" <ann@x.org>\r\nTo: Bob <bob@y.org>\r\n"
         "Subject: =?UTF-8?Q?Caf=C3=A9_time?=\r\nContent-Type: text/html\r\n\r\n"
         "<html><body class=\"m\"><p>Hi</p><br></body></html>\r\n",
         page(QStringLiteral("<p>Hi</p><br/>"),
              kSender +
                  QStringLiteral("To: <a href=\"mailto:bob@y.org\">Bob &lt;bob@y.org&gt;</a>"
                                 "<br/>\n") +
                  subjectBlock("Café time"))},
        {"a name without address, a bare recipient and the date",
         "From: Ann\nTo: bob@y.org\nDate: Tue, 01 Nov 2022 09:05:00 GMT (UTC)\n"
         "Content-Type: text/html\n\n<p>x</p>",
         page(QStringLiteral("\n\n<p>x</p>"),
              QStringLiteral("<div style=\"padding: 0%; font-family: **TavelleFont**;\">"
                             "<b>Ann</b><br/>To: bob@y.org<br/>\n<font color=\"#999\">"
                             "November 1, 2022 at 9:05\u202FAM</font><hr/><br/>\n"))},
        {"an address without name opens no division",
         "From: <ann@x.org>\nTo: Bob\nContent-Type: text/html\n\nx",
         page(QStringLiteral("\n\nx"), QStringLiteral("To: Bob<br/>\n"))},
        {"quoted-printable HTML across a soft break, no header block",
         "Content-Type: text/html\nContent-Transfer-Encoding: quoted-printable\n\n"
         "<p>caf=C3=A9 long=\nline</p>",
         page(QStringLiteral("\n\n<p>café longline</p>"))},
        {"HTML with its own style is taken whole",
         "Content-Type: text/html\nContent-Transfer-Encoding: base64\n\n"
         "PHN0eWxlPjwvc3R5bGU+PGJyPg==",
         QStringLiteral("<style></style><br/>")},
        {"a calendar part gives nothing", "Content-Type: text/calendar\n\nBEGIN:VCALENDAR",
         QString()},
        {"a PDF without base64 gives nothing", "Content-Type: application/pdf\n\n%PDF", QString()},
        {"a message part in 8bit is its raw content",
         "Content-Type: message/rfc822\nContent-Transfer-Encoding: 8bit\n\nSubject: in",
         QStringLiteral("\n\nSubject: in")},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(convert(c.message).toStdString(), c.html.toStdString());
    }
}

TEST_F(MailMessage, PlainTextGoesThroughMarkdown)
{
    const QString html = convert("Content-Type: text/plain\n\n\n  Some *plain* text\n");
    EXPECT_TRUE(html.startsWith(QStringLiteral("<html>\n<head>\n<meta name=\"viewport\"")));
    EXPECT_TRUE(html.contains(QStringLiteral("<em>plain</em>"))) << html.toStdString();
}

TEST_F(MailMessage, TheHTMLAlternativeWinsWhateverTheOrder)
{
    const QString html = convert("From: \"Ann \\(Work\\)\" <ann@x.org>\n"
                                 "Content-Type: multipart/alternative; boundary=\"b1\";\n\n"
                                 "--b1\nContent-Type: text/plain\n\nplain\n"
                                 "--b1\nContent-Type: text/html\n\n<p>rich</p>\n--b1--\n");
    EXPECT_EQ(html.toStdString(), page(QStringLiteral("\n\n<p>rich</p>"), kSender).toStdString());
}

TEST_F(MailMessage, NestedRelatedImagesAndAttachmentsStayInTheFolder)
{
    const QString html =
        convert("Subject: Pics\nContent-Type: multipart/mixed; boundary=outer\n\n"
                "--outer\nContent-Type: multipart/related; boundary=inner\n\n"
                "--inner\nContent-Type: image/png\nContent-ID: <IMG1@X>\n"
                "Content-Transfer-Encoding: base64\n\naGVsbG8=\n"
                "--inner\nContent-Type: text/html\n\n<img src=\"cid:img1@x\">\n--inner--\n"
                "--outer\nContent-Type: application/octet-stream\n"
                "Content-Transfer-Encoding: base64\n"
                "Content-Disposition: attachment; filename=\"../../x\"\n\nd29ybGQ=\n"
                "--outer\nContent-Type: image/gif\nContent-Transfer-Encoding: base64\n\nR0lG\n"
                "--outer--\n");
    const QString f = folder();
    // What follows the related part's page stands behind it.
    const QString expected =
        page(QStringLiteral("\n\n<img src=\"%1/attachment.jpg\">").arg(f), subjectBlock("Pics")) +
        QStringLiteral("<a href=\"file://%1/attachment 1.jpg\"><img style=\"width:auto; "
                       "max-width:96%; height:auto;\" src=\"file://%1/attachment 1.jpg\"></a>\n"
                       "<br/>📎 <a href=\"file://%1/_.._x\">_.._x</a><br/>\n")
            .arg(f);
    EXPECT_EQ(html.toStdString(), expected.toStdString());
    EXPECT_EQ(fileText(f + QStringLiteral("/attachment.jpg")), QStringLiteral("hello"));
    EXPECT_EQ(fileText(f + QStringLiteral("/_.._x")), QStringLiteral("world"));
    EXPECT_FALSE(QFile::exists(root.path() + QStringLiteral("/../x")));
    EXPECT_EQ(QDir(f).entryList(QDir::Files).size(), 3);
}

// A name may run over line ends (the expression stops only at ";"): joined,
// it still names a file inside the folder.
TEST_F(MailMessage, AttachmentNamesOverLineEndsStayInTheFolder)
{
    struct Case
    {
        const char *name;
        const char *stored;
    };
    const Case cases[] = {
        {"\"../\n../x\"", "_.._x"},
        {"\n/etc/\npasswd", "_etc_passwd"},
        {"a.txt\nX-Note: b/c", "a.txtX-Note: b_c"},
        {"\"..\n\"", "attachment"},
    };
    for (const Case &c : cases) {
        const QString stored = QString::fromUtf8(c.stored);
        const QString html =
            convert(("Content-Type: application/octet-stream\nContent-Transfer-Encoding: base64\n"
                     "Content-Disposition: attachment; filename=" +
                     QByteArray(c.name) + "\n\nd29ybGQ=\n")
                        .constData());
        EXPECT_EQ(html, QStringLiteral("__ATTACHMENT__ ") + stored) << c.name;
        EXPECT_EQ(fileText(folder() + u'/' + stored), QStringLiteral("world")) << c.name;
        QFile::remove(folder() + u'/' + stored);
    }
    EXPECT_EQ(QDir(root.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("attachments")});
}

// Python's own test messages (Debian's libpython3 test suite): each one
// converts without a fault.
TEST_F(MailMessage, PythonsTestMessagesConvert)
{
    const QStringList folders =
        QDir(QStringLiteral("/usr/lib")).entryList({QStringLiteral("python3*")}, QDir::Dirs);
    QStringList messages;
    for (const QString &python : folders) {
        const QDir data(QStringLiteral("/usr/lib/%1/test/test_email/data").arg(python));
        for (const QString &name : data.entryList({QStringLiteral("msg_*.txt")}, QDir::Files))
            messages << data.filePath(name);
    }
    if (messages.isEmpty())
        GTEST_SKIP() << "no Python test suite installed";
    for (const QString &message : std::as_const(messages))
        tl_emlToHTML(fileText(message), folder());
    EXPECT_EQ(QDir(root.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("attachments")});
}

} // namespace
