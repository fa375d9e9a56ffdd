// `tavelle` with no command starts the desktop program beside it; the
// command itself never loads the window libraries.
#include "cli.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace tl::cli {

namespace {

bool isLaunchGesture(const char *argument)
{
    return std::strcmp(argument, "--choose-library") == 0 ||
           std::strcmp(argument, "--no-restore") == 0;
}

std::string siblingExecutable()
{
    std::string self(4096, '\0');
    const ssize_t length = ::readlink("/proc/self/exe", self.data(), self.size() - 1);
    if (length <= 0)
        return "tavelle-desktop";
    self.resize(std::size_t(length));
    return self.substr(0, self.rfind('/') + 1) + "tavelle-desktop";
}

} // namespace

bool startsDesktopProgram(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i)
        if (!isLaunchGesture(argv[i]))
            return false;
    return true;
}

int execDesktopProgram(const QStringList &arguments)
{
    std::vector<QByteArray> bytes;
    std::vector<char *> argv{nullptr};
    for (const QString &argument : arguments)
        bytes.push_back(argument.toLocal8Bit());
    for (QByteArray &argument : bytes)
        argv.push_back(argument.data());
    return execDesktopProgram(int(argv.size()), argv.data());
}

int execDesktopProgram(int argc, char **argv)
{
    const std::string program = siblingExecutable();
    std::vector<char *> arguments{const_cast<char *>(program.c_str())};
    for (int i = 1; i < argc; ++i)
        arguments.push_back(argv[i]);
    arguments.push_back(nullptr);
    ::execv(program.c_str(), arguments.data());
    // Only reached when the program could not be started.
    const std::string message =
        "tavelle: cannot start " + program + ": " + std::strerror(errno) + "\n";
    [[maybe_unused]] const ssize_t written = ::write(2, message.data(), message.size());
    return Failure;
}

} // namespace tl::cli
