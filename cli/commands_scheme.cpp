// url, open, note, add-selection, insert: the doors into the program from
// outside, run headless where no window is needed: tavelle:// addresses,
// files handed over, and the services.
#include "browser/library_search.h"
#include "cli.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "shell/single_instance.h"
#include "shell/url_actions.h"
#include "store/library_root.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <memory>

namespace tl::cli {

namespace {

QString standardInput()
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(input.readAll());
}

void describeURL(QCommandLineParser &p)
{
    p.addPositionalArgument("URL", "A tavelle:// address: show, search, addnote or grab.", "URL");
}

int runAddress(const QString &address)
{
    platform::setAlertPresenter(std::make_shared<StandardErrorAlerts>());
    // Without a window the item to show is printed, and a search prints its results.
    QString searchScope = store::libraryRoot();
    const ScopedObserver shown(events::ShowItemAtPath, [](const QString &, const QVariantMap &p) {
        printLine(p.value("path").toString());
    });
    const ScopedObserver book(events::NewBookSelected,
                              [&searchScope](const QString &, const QVariantMap &p) {
                                  searchScope = p.value("path").toString();
                              });
    const ScopedObserver search(
        events::StartSpotlightSearch, [&](const QString &, const QVariantMap &p) {
            const browser::SearchOutcome results = browser::runLibrarySearch(
                p.value("term").toString(), searchScope, search::Field::NameOrContent,
                browser::SearchSource::FreshIndex);
            for (const QString &path : results.paths())
                printLine(path);
        });
    shell::handleTavelleURL(address);
    while (shell::downloadsInFlight() > 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return Success;
}

int runURL(const QCommandLineParser &, const Invocation &in)
{
    if (in.arguments.size() != 1 || !shell::parsedTavelleURL(in.arguments[0]))
        return fail("usage: tavelle url 'tavelle://...'", Usage);
    return runAddress(in.arguments[0]);
}

void describeOpen(QCommandLineParser &p)
{
    p.addPositionalArgument("PATH", "A file or folder handed over from outside.", "PATH");
    p.addOption({"answer", "The button to press when a question is asked (0 is the first).", "N"});
    p.addOption({"ask", "Ask how to proceed, as with the Option key held."});
}

int runOpen(const QCommandLineParser &p, const Invocation &in)
{
    if (in.arguments.size() != 1)
        return fail("usage: tavelle open PATH [--answer N] [--ask]", Usage);
    auto alerts = std::make_shared<StandardErrorAlerts>();
    alerts->pushAnswer(p.isSet("answer") ? p.value("answer").toInt() : -1);
    platform::setAlertPresenter(alerts);
    // Without a window the items it would open and the copies made are printed.
    const auto printPaths = [](const QString &, const QVariantMap &payload) {
        for (const QString &path : payload.value("paths").toStringList())
            printLine(path);
        if (payload.contains("path"))
            printLine(payload.value("path").toString());
    };
    const ScopedObserver opened(events::OpenItemsInNewWindow, printPaths);
    const ScopedObserver copied(events::HandleFileModificationInstantly, printPaths);
    if (!shell::applicationOpenFile(absolutePath(in.arguments[0]), p.isSet("ask")))
        return fail("Files handed over are ignored (ignoreDroppedFilesOnLaunch is set)");
    return Success;
}

void describeNote(QCommandLineParser &p)
{
    p.addOption({"title", "The note's title; its first line when left out.", "TITLE"});
    p.addOption({"book",
                 "The book to put it in; the default inbox or the top level when left "
                 "out.",
                 "BOOK"});
    p.addOption(
        {"window", "Open a window to write the note in instead of reading standard input."});
}

int runNote(const QCommandLineParser &p, const Invocation &)
{
    if (p.isSet("window")) {
        if (shell::handOverToRunningInstance({QLatin1String(shell::kQuickEntryRequest)}))
            return Success;
        return execDesktopProgram({QStringLiteral("--quick-note")});
    }
    QString book = shell::defaultInboxOrRoot();
    if (p.isSet("book")) {
        const std::optional<QString> chosen = itemInLibrary(p.value("book"), Inside::RootAllowed);
        if (!chosen)
            return Failure;
        book = *chosen;
    }
    const QString path = shell::addNote(standardInput(), p.value("title"), book);
    if (path.isEmpty())
        return fail("Nothing to note: standard input is empty");
    printLine(path);
    return Success;
}

void describeAddSelection(QCommandLineParser &p)
{
    p.addOption({"rtf", "The text is RTF: the document gets the extension rtf."});
}

int runAddSelection(const QCommandLineParser &p, const Invocation &)
{
    const QString path = shell::addSelection(standardInput(), p.isSet("rtf"));
    if (path.isEmpty())
        return fail("Nothing to add: standard input is empty");
    printLine(path);
    return Success;
}

void describeInsert(QCommandLineParser &)
{
}

int runInsert(const QCommandLineParser &, const Invocation &)
{
    const QString text = standardInput();
    if (text.isEmpty())
        return fail("Nothing to insert: standard input is empty");
    if (!shell::handOverToRunningInstance({shell::insertRequest(text)}))
        return fail("Tavelle is not running: there is no document to insert into");
    return Success;
}

} // namespace

std::optional<int> runLaunchRequest(const QString &argument)
{
    const std::optional<shell::TavelleURL> address = shell::parsedTavelleURL(argument);
    if (!address && !QFileInfo::exists(argument))
        return std::nullopt;
    const QString request = address ? argument : absolutePath(argument);
    if (shell::handOverToRunningInstance({request}))
        return Success;
    static const QStringList windowless{"addnote",     "grab",        "append",
                                        "addnewdoc",   "addnewtask",  "wifi_sharing",
                                        "webdav_sync", "addnewsketch"};
    if (address && windowless.contains(address->host.toLower()))
        return runAddress(argument);
    return execDesktopProgram({request});
}

const std::vector<Command> &schemeCommands()
{
    static const std::vector<Command> commands{
        {"url", "Run a tavelle:// address", true, describeURL, runURL},
        {"open", "Take in a file or folder handed over from outside", true, describeOpen, runOpen},
        {"note", "A quick note from standard input", true, describeNote, runNote},
        {"add-selection", "A document from the text on standard input", true, describeAddSelection,
         runAddSelection},
        {"insert", "Insert the text on standard input into the document Tavelle shows", false,
         describeInsert, runInsert},
    };
    return commands;
}

} // namespace tl::cli
