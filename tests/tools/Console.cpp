// SPDX-License-Identifier: MIT
#include "tests/tools/Console.h"

#include <QDeadlineTimer>

#include <csignal>

#include <unistd.h>

namespace
{
constexpr int longWaitMilliseconds = 120000;
}

Console::Console() = default;

Console::~Console()
{
    if (state() != NotRunning) {
        kill();
        waitForFinished();
    }
}

void Console::start(const QStringList &arguments)
{
    QProcess::start(QStringLiteral(TWINSIFT_SCAN), arguments);
}

Console::Result Console::result()
{
    const bool isFinished = state() == NotRunning || waitForFinished(longWaitMilliseconds);
    Result result = {-1, readAllStandardOutput(), errorSoFar + readAllStandardError()};
    if (isFinished && error() != FailedToStart) {
        // The toolkit tells the signal in the place of the status.
        result.status = exitStatus() == NormalExit ? exitCode() : 128 + exitCode();
    }
    return result;
}

bool Console::waitForError(const QByteArray &text)
{
    const QDeadlineTimer deadline(longWaitMilliseconds);
    while (!errorSoFar.contains(text) && state() != NotRunning && !deadline.hasExpired()) {
        waitForReadyRead(100);
        errorSoFar += readAllStandardError();
    }
    return errorSoFar.contains(text);
}

void Console::send(int number) const
{
    ::kill(static_cast<pid_t>(processId()), number);
}

void Console::setSignal(int number, bool isIgnored)
{
    signalNumber = number;
    isSignalIgnored = isIgnored;
}

Console::Result Console::run(const QStringList &arguments,
                             const QString &folder,
                             const QByteArray &input)
{
    Console console;
    console.setWorkingDirectory(folder);
    console.start(arguments);
    console.write(input);
    console.closeWriteChannel();
    return console.result();
}

void Console::prepareChild()
{
    if (signalNumber != 0) {
        std::signal(signalNumber, isSignalIgnored ? SIG_IGN : SIG_DFL);
    }
    if (dropsRights && ::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
        ::_exit(126);
    }
}
