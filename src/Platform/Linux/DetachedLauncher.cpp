#include "Platform/Linux/DetachedLauncher.h"

#include "Platform/Linux/LaunchEnvironment.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pavonel {

namespace {

constexpr int reportFd = 3; // the first behind standard input, output and error

/// Keeps every signal from this thread, so that none of our handlers runs in a child, where the pipes that
/// it writes to are still ours.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

// What runs in a child before its program does may only make system calls: another thread can have held the
// heap's lock at the moment of the fork.

void leaveFilesBehind(int report) {
    const int safe = fcntl(report, F_DUPFD, reportFd); // not where the null device goes
    const int null = open("/dev/null", O_RDWR);
    for (int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(null, standard);
    if (safe != reportFd)
        dup2(safe, reportFd);
    fcntl(reportFd, F_SETFD, FD_CLOEXEC);
    closefrom(reportFd + 1);
}

void leaveSignalsBehind() {
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &byDefault, nullptr);
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

struct Command {
    char *const *arguments;
    char *const *environment;
};

[[noreturn]] void become(const Command &command, int report) {
    leaveFilesBehind(report);
    leaveSignalsBehind();
    execve(command.arguments[0], command.arguments, command.environment);
    const char failed = 1;
    [[maybe_unused]] const auto written = write(reportFd, &failed, 1);
    _exit(127);
}

/// The child forks again and ends at once, so that its own child belongs to the init process.
[[noreturn]] void handOver(const Command &command, int report) {
    setsid();
    const pid_t child = fork();
    if (child == 0)
        become(command, report);
    _exit(child < 0 ? 1 : 0);
}

bool childHandedOver(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The report's writing end closes with nothing in it when the program has taken over.
bool isSilentToTheEnd(int report) {
    char failed = 0;
    ssize_t got = 0;
    do {
        got = read(report, &failed, 1);
    } while (got < 0 && errno == EINTR);
    return got == 0;
}

bool start(const Command &command) {
    std::array<int, 2> report{};
    if (pipe2(report.data(), O_CLOEXEC) != 0)
        return false;
    const SignalsBlocked blocked;
    const pid_t child = fork();
    if (child == 0)
        handOver(command, report[1]);
    close(report[1]);
    const bool started = child > 0 && childHandedOver(child) && isSilentToTheEnd(report[0]);
    close(report[0]);
    return started;
}

/// As a program is given them, with a null at the end.
std::vector<char *> pointersTo(QByteArrayList &texts) {
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

bool DetachedLauncher::launch(const QString &program, const QStringList &arguments, SearchPath searchPath) {
    const QString executable = files_.executable(program);
    if (executable.isEmpty())
        return false;
    QByteArrayList command{QFile::encodeName(executable)};
    for (const QString &argument : arguments) {
        command.append(argument.toLocal8Bit());
        if (command.last().contains(
                '\0')) // what follows would be cut off, and half a script is another script
            return false;
    }
    QByteArrayList environment = launchEnvironment(QFile::encodeName(files_.toolsFolder()), searchPath);
    return start({pointersTo(command).data(), pointersTo(environment).data()});
}

/// Of all that it starts, a user notices this: the language of the break scripts is another one here.
QString DetachedLauncher::limitation() const {
    if (QFile::exists(QStringLiteral("/usr/bin/osascript")))
        return {};
    return files_.tool(QStringLiteral("osascript")).isEmpty()
               ? QStringLiteral("The program that runs break scripts is missing.")
               : QStringLiteral("There is no AppleScript on this system: a script is handed to the shell.");
}

} // namespace pavonel
