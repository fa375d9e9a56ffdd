#pragma once

#include "platform/alerts.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <optional>

namespace tl::cli {

// Alerts of a headless run go to standard error as "message: text"; the
// answers are those pushed, else the first button.
class StandardErrorAlerts : public platform::HeadlessAlertPresenter
{
public:
    int run(const platform::Alert &alert) override;
};

// Exit statuses of the command.
enum Exit { Success = 0, Failure = 1, Usage = 2 };

// One run of a subcommand: its arguments after the name, and the global
// options that apply to it.
struct Invocation
{
    QString command;
    QStringList arguments;
    bool json = false;
};

struct Command
{
    const char *name;
    const char *summary;
    // Whether the command works on a library and needs its root.
    bool needsLibrary;
    // Adds the command's options and positional arguments to its parser.
    std::function<void(QCommandLineParser &)> describe;
    std::function<int(const QCommandLineParser &, const Invocation &)> run;
};

const std::vector<Command> &libraryCommands();
const std::vector<Command> &settingsCommands();
const std::vector<Command> &pathCommands();
const std::vector<Command> &itemCommands();
const std::vector<Command> &convertCommands();
const std::vector<Command> &serveCommands();
const std::vector<Command> &browserCommands();
const std::vector<Command> &fountainCommands();
const std::vector<Command> &tasksCommands();
const std::vector<Command> &contextsCommands();
const std::vector<Command> &searchCommands();
const std::vector<Command> &publishCommands();
const std::vector<Command> &schemeCommands();
const std::vector<Command> &linksCommands();
const std::vector<Command> &importCommands();
const std::vector<Command> &syncCommands();
const std::vector<Command> &recognitionCommands();
const std::vector<Command> &pasteCommands();
// Whether the run is a paste from the clipboard with a display to take it
// from: the program then starts as a graphical one.
bool pasteNeedsClipboard(int argc, char **argv);

// No arguments, or only the launch gestures: the desktop program is wanted.
bool startsDesktopProgram(int argc, char **argv);
// Replaces this process with the desktop program beside the command; answers
// only when that fails.
int execDesktopProgram(int argc, char **argv);
// The same with the arguments after the program's name.
int execDesktopProgram(const QStringList &arguments);
// `tavelle URL|PATH`: handed to the running desktop program; with none, an
// address that needs no window runs here, anything else starts the program
// with it. Nothing when the argument is neither an address nor a path.
std::optional<int> runLaunchRequest(const QString &argument);

// Prints one line to standard error and answers the status.
int fail(const QString &message, int status = Failure);
void printLine(const QString &line);
// Prints a value as JSON with --json, else as text: a scalar on its line, a
// list one entry a line, a dictionary one "key: value" a line.
void printValue(const QVariant &value, bool json);
void printList(const QStringList &list, bool json);
// Writes the output to -o FILE, or prints it.
int deliver(const QString &text, const QCommandLineParser &parser);

// An argument naming a file, made absolute against the working folder.
QString absolutePath(const QString &argument);

enum class Inside { RootAllowed, BelowRoot };
// An argument naming an item a command changes: its absolute path, with the
// links of its folders resolved, when it lies in the library (or is its root,
// where allowed); otherwise nothing, with the one-line error printed.
std::optional<QString> itemInLibrary(const QString &argument, Inside inside);
// Parses VALUE... for --type string|int|real|bool|date|array.
std::optional<QVariant> parseTypedValue(const QString &type, const QStringList &values);

} // namespace tl::cli
