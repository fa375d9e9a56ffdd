// tavelle: the library's operations from the command line, headless.
#include "assembly/core_assembly.h"
#include "cli.h"
#include "platform/settings.h"
#include "shell/version.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <memory>

namespace {

using namespace tl::cli;

const QString kNoLibrary =
    QStringLiteral("No library chosen: run 'tavelle init DIR' or pass --library DIR");

std::vector<const Command *> allCommands()
{
    std::vector<const Command *> all;
    for (const auto *group :
         {&libraryCommands(), &settingsCommands(), &pathCommands(), &itemCommands(),
          &convertCommands(), &fountainCommands(), &browserCommands(), &tasksCommands(),
          &contextsCommands(), &searchCommands(), &publishCommands(), &schemeCommands(),
          &linksCommands(), &importCommands(), &recognitionCommands(), &pasteCommands(),
          &syncCommands(), &serveCommands()})
        for (const Command &c : *group)
            all.push_back(&c);
    return all;
}

QString overview()
{
    QString text = QStringLiteral(
        "Usage: tavelle [--library DIR] [--json] COMMAND [ARGS...]\n"
        "       tavelle [--choose-library] [--no-restore]   (the desktop program)\n"
        "       tavelle URL|PATH   (to the running desktop program, or starting it)\n\n"
        "Tavelle keeps documents, notes and tasks in an ordinary folder tree.\n"
        "Without --library the command works on the library chosen last with 'tavelle init'.\n\n"
        "Commands:\n");
    // The summaries line up one blank past the longest name.
    qsizetype width = 0;
    for (const Command *c : allCommands())
        width = std::max(width, qsizetype(qstrlen(c->name)) + 1);
    for (const Command *c : allCommands())
        text += QStringLiteral("  %1%2\n")
                    .arg(QString::fromLatin1(c->name).leftJustified(width),
                         QString::fromLatin1(c->summary));
    text += QStringLiteral("\nRun 'tavelle COMMAND --help' for a command's arguments.");
    return text;
}

int runCommand(const Command &command, const QStringList &arguments, bool json)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(command.summary));
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOption({QStringLiteral("json"), QStringLiteral("Print data as JSON.")});
    parser.addOption(
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")});
    command.describe(parser);
    if (!parser.parse(QStringList{QStringLiteral("tavelle ") + command.name} + arguments))
        return fail(parser.errorText(), Usage);
    if (parser.isSet(QStringLiteral("help"))) {
        // The parser names the program by the path it was started with.
        QString help = parser.helpText().trimmed();
        const QString started = QStringLiteral("Usage: ") + QCoreApplication::arguments().value(0);
        if (help.startsWith(started))
            help.replace(0, started.size(), QStringLiteral("Usage: tavelle ") + command.name);
        printLine(help);
        return Success;
    }
    if (command.needsLibrary && tl::store::libraryRoot().isEmpty())
        return fail(kNoLibrary, Usage);
    Invocation invocation{QString::fromLatin1(command.name), parser.positionalArguments(),
                          json || parser.isSet(QStringLiteral("json"))};
    return command.run(parser, invocation);
}

} // namespace

int main(int argc, char **argv)
{
    if (startsDesktopProgram(argc, argv))
        return execDesktopProgram(argc, argv);
    // Only a graphical program can read the clipboard.
    const std::unique_ptr<QCoreApplication> app =
        pasteNeedsClipboard(argc, argv) ? std::make_unique<QGuiApplication>(argc, argv)
                                        : std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tavelle"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(tl::shell::kShortVersion));
    tl::setUpDiagnostics();
    tl::setStandardErrorRedirectAllowed(false);
    tl::assembly::assembleCore({});
    if (!tl::assembly::checkAssembly())
        return Failure;

    QStringList args = QCoreApplication::arguments().mid(1);
    bool json = false;
    while (!args.isEmpty() && args.first().startsWith(u'-')) {
        const QString option = args.takeFirst();
        if (option == u"--json") {
            json = true;
        } else if (option == u"--library" || option.startsWith(u"--library=")) {
            QString dir = option.mid(QStringLiteral("--library=").size());
            if (option == u"--library") {
                if (args.isEmpty())
                    return fail(QStringLiteral("--library needs a folder"), Usage);
                dir = args.takeFirst();
            }
            if (!QFileInfo(dir).isDir())
                return fail(QStringLiteral("Not a folder: %1").arg(dir), Usage);
            tl::store::setLibraryRootOverride(absolutePath(dir));
        } else if (option == u"--help" || option == u"-h") {
            printLine(overview());
            return Success;
        } else if (option == u"--version") {
            printLine(QStringLiteral("tavelle %1").arg(QCoreApplication::applicationVersion()));
            return Success;
        } else {
            return fail(QStringLiteral("Unknown option: %1").arg(option), Usage);
        }
    }
    if (args.isEmpty())
        return fail(QStringLiteral("No command given: run 'tavelle --help' for the list"), Usage);

    const QString name = args.takeFirst();
    for (const Command *command : allCommands())
        if (name == QLatin1String(command->name))
            return runCommand(*command, args, json);
    if (args.isEmpty())
        if (const std::optional<int> handled = runLaunchRequest(name))
            return *handled;
    return fail(QStringLiteral("Unknown command: %1 (run 'tavelle --help')").arg(name), Usage);
}
