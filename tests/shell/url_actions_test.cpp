// Each host of the tavelle:// scheme, and files handed over from outside.
#include "../store/library_fixture.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "platform/alerts.h"
#include "platform/folders.h"
#include "shell/shell_hooks.h"
#include "shell/shell_keys.h"
#include "shell/url_actions.h"
#include "shell/url_grab.h"
#include "store/keys.h"
#include "store/properties.h"

#include <QCoreApplication>
#include <QDir>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

namespace {

using namespace tl;

class URLActions : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        alerts = std::make_shared<platform::HeadlessAlertPresenter>();
        platform::setAlertPresenter(alerts);
        makeFile(inRoot("Book/Doc.md"), "# Doc");
    }
    void TearDown() override
    {
        platform::setAlertPresenter(nullptr);
        shell::shellHooks().findAlternativePath = [](const QString &) { return QString(); };
        LibraryTest::TearDown();
    }

    // The events the action posts, as "NAME path-or-term" lines.
    QStringList postedBy(const std::function<void()> &action)
    {
        QStringList posted;
        const ScopedObserver all({}, [&](const QString &name, const QVariantMap &p) {
            QString value = p.value("path").toString() + p.value("term").toString();
            for (const QString &path : p.value("paths").toStringList())
                value += path;
            posted << name + " " + value.replace(root_, "ROOT");
        });
        action();
        return posted;
    }

    QStringList filesIn(const QString &folder) const
    {
        return QDir(folder).entryList(QDir::Files, QDir::Name);
    }

    std::shared_ptr<platform::HeadlessAlertPresenter> alerts;
};

TEST_F(URLActions, ShowAndSearchPostTheirEvents)
{
    shell::shellHooks().findAlternativePath = [this](const QString &wanted) {
        return wanted.endsWith("Lost.md") ? inRoot("Book/Doc.md") : QString();
    };
    struct Case
    {
        const char *url;
        QStringList posted;
    };
    const Case cases[] = {
        {"tavelle://show/Book/Doc.md", {"TLKSShowItemAtPathNotification ROOT/Book/Doc.md"}},
        {"tavelle://Book/Doc.md", {"TLKSShowItemAtPathNotification ROOT/Book/Doc.md"}},
        {"tavelle://Book/Doc.md#part-two",
         {"TLKSShowItemAtPathNotification ROOT/Book/Doc.md#part-two"}},
        {"tavelle://show/Book/Doc%20Lost.md", {"TLKSShowItemAtPathNotification ROOT/Book/Doc.md"}},
        {"tavelle://show/Book/Nowhere.md", {}},
        {"tavelle://search?tea%20time&scope=Book",
         {"TLKSNewBookSelectedNotification ROOT/Book",
          "TLStartSpotlightSearchNotification tea time"}},
        {"tavelle://append/Book/Doc.md?text", {}},
        {"tavelle://addnewdoc", {}},
        {"tavelle://addnewtask", {}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(postedBy([&] { shell::handleTavelleURL(c.url); }), c.posted) << c.url;
    EXPECT_TRUE(alerts->shownAlerts().isEmpty());
}

TEST_F(URLActions, RefusedHostsAlertWithTheHostInQuotes)
{
    for (const char *host : {"wifi_sharing", "webdav_sync", "addnewsketch"})
        shell::handleTavelleURL(QStringLiteral("tavelle://") + host);
    ASSERT_EQ(alerts->shownAlerts().size(), 3);
    const platform::Alert alert = alerts->shownAlerts().last();
    EXPECT_EQ(alert.message, "Unsupported URL Scheme\n\"addnewsketch\"");
    EXPECT_EQ(alert.informativeText, "This scheme is intended for Tavelle on an iPad or iPhone.");
    EXPECT_EQ(alert.buttons, QStringList{"Close"});
}

TEST_F(URLActions, AddNoteWritesThePlainDocument)
{
    struct Case
    {
        const char *url;
        const char *file; // below the root
        const char *body;
    };
    const Case cases[] = {
        {"tavelle://addnote?title=a/b&Hello%20there", "a-b.txt", "Hello there"},
        {"tavelle://addnote?title=list.md&parent=Book&- one", "Book/list.md", "- one"},
        {"tavelle://addnote?/First%20line%0Asecond/", "First line.txt", "First line\nsecond"},
        {"tavelle://addnote?parent=Nowhere&title=t&first&last", "t.txt", "last"},
        {"tavelle://addnote/&title=split&parent=Book&?body", "Book/split.txt", "body"},
    };
    for (const Case &c : cases) {
        shell::handleTavelleURL(c.url);
        EXPECT_EQ(tltest::readFile(inRoot(c.file)), QByteArray(c.body)) << c.url;
        EXPECT_TRUE(store::tl_propertyForKey(inRoot(c.file), "CreationDate").isValid()) << c.url;
    }
    const QStringList before = filesIn(root_);
    shell::handleTavelleURL("tavelle://addnote?title=empty");
    EXPECT_EQ(filesIn(root_), before);
}

// Answers every connection with one canned HTTP response.
class LoopbackServer
{
public:
    explicit LoopbackServer(QByteArray response) : m_response(std::move(response))
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                socket->readAll();
                socket->write(m_response);
                socket->disconnectFromHost();
            });
        });
    }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(m_server.serverPort()); }

private:
    QTcpServer m_server;
    QByteArray m_response;
};

QByteArray response(const QByteArray &contentType, const QByteArray &extraHeader = {})
{
    const QByteArray body = "<p>page</p>";
    return "HTTP/1.1 200 OK\r\nContent-Type: " + contentType + "\r\n" + extraHeader +
           "Content-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}

TEST_F(URLActions, GrabDownloadsIntoTheLibrary)
{
    struct Case
    {
        QByteArray response;
        const char *address; // behind the server's host and port
        const char *file;    // below the root
    };
    const Case cases[] = {
        {response("text/html; charset=utf-8"), "/pages/article.php", "article.html"},
        {response("text/html"), "/x&title=My%20Page&parent=Book", "Book/My Page.html"},
        {response("application/x-unknown"), "/data.bin&parent=Nowhere", "data.txt"},
        {response("application/pdf",
                  "Content-Disposition: attachment; filename=\"report.doc\"\r\n"),
         "/download", "report.pdf"},
    };
    for (const Case &c : cases) {
        LoopbackServer server(c.response);
        shell::handleTavelleURL("tavelle://grab/" + server.address() + c.address);
        while (shell::downloadsInFlight() > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_EQ(tltest::readFile(inRoot(c.file)), "<p>page</p>") << c.address;
        EXPECT_TRUE(
            store::tl_propertyForKey(inRoot(c.file), "URL").toString().startsWith("http://"))
            << c.address;
    }
}

TEST_F(URLActions, SuggestedFileNamesComeFromContentDisposition)
{
    EXPECT_EQ(shell::suggestedFileName("attachment; filename=\"a b.txt\""), "a b.txt");
    EXPECT_EQ(shell::suggestedFileName("attachment; filename*=UTF-8''%C3%A9t%C3%A9.pdf"),
              "été.pdf");
    EXPECT_EQ(shell::suggestedFileName("attachment; filename=\"../../etc/passwd\""), "passwd");
    EXPECT_EQ(shell::suggestedFileName("inline"), "");
}

TEST_F(URLActions, FilesHandedOverAreOpenedCopiedOrAskedAbout)
{
    const QString outsideFile = makeFile(outside("Letter.txt"), "dear");
    const QString style = makeFile(outside("Look.css"), "body {}");
    const QString temporary = makeFile(platform::temporaryFolder() + "/Dropped.txt", "tmp");
    makeFolder(inRoot("Inbox"));
    struct Case
    {
        const char *name;
        QString path;
        bool askHow;
        int answer;
        QStringList posted;
    };
    const QString inBook = inRoot("Book/Doc.md");
    const QString opens = "TLKSOpenItemsInNewWindowNotification ";
    const QString copied = "TLKSHandleFileModificationInstantly ROOT/";
    const Case cases[] = {
        {"inside opens", inBook, false, -1, {opens + "ROOT/Book/Doc.md"}},
        {"outside opens", outsideFile, false, -1, {opens + outsideFile}},
        {"temporary is copied, then opened",
         temporary,
         false,
         -1,
         {copied + "Dropped.txt", opens + "ROOT/Dropped.txt"}},
        {"asked: open", outsideFile, true, 0, {opens + outsideFile}},
        {"asked: add", outsideFile, true, 1, {copied + "Letter.txt"}},
        {"asked: cancel", outsideFile, true, 2, {}},
        {"style sheet: add as style", style, false, 2, {copied + "TLResources/CSS/Look.css"}},
        {"the root itself", root_, false, -1, {}},
    };
    for (const Case &c : cases) {
        if (c.answer >= 0)
            alerts->pushAnswer(c.answer);
        EXPECT_EQ(postedBy([&] { EXPECT_TRUE(shell::applicationOpenFile(c.path, c.askHow)); }),
                  c.posted)
            << c.name;
    }
    const QList<platform::Alert> shown = alerts->shownAlerts();
    ASSERT_EQ(shown.size(), 4);
    EXPECT_EQ(shown[0].message, "How Do You Wish to Proceed?");
    EXPECT_EQ(shown[0].informativeText, "\"Letter.txt\"");
    EXPECT_EQ(shown[0].buttons,
              QStringList({"Open in Extra Window", "Add to Tavelle' Top Level", "Cancel"}));
    EXPECT_EQ(shown[3].buttons, QStringList({"Open in Extra Window", "Add to Tavelle' Top Level",
                                             "Add as Document Style", "Cancel"}));

    setSetting(keys::setting::DefaultInbox, "Inbox");
    alerts->pushAnswer(1);
    EXPECT_EQ(postedBy([&] { shell::applicationOpenFile(outsideFile, true); }),
              QStringList{"TLKSHandleFileModificationInstantly ROOT/Inbox/Letter.txt"});
    EXPECT_EQ(alerts->shownAlerts().last().buttons[1], "Add to Inbox");

    alerts->pushAnswer(1);
    const QString other = makeFolder(outside("Other"));
    shell::applicationOpenFile(other);
    EXPECT_EQ(alerts->shownAlerts().last().message, "Change Tavelle Home");
    EXPECT_TRUE(alerts->shownAlerts().last().informativeText.startsWith("Switch to folder "));

    setSetting(keys::setting::IgnoreDroppedFilesOnLaunch, true);
    EXPECT_EQ(postedBy([&] { EXPECT_FALSE(shell::applicationOpenFile(inBook)); }), QStringList());
}

} // namespace
