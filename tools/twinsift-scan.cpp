// SPDX-License-Identifier: MIT
#include "app/Product.h"
#include "engine/LocalText.h"
#include "engine/ScanProgress.h"
#include "tools/ByteText.h"
#include "tools/GroupWriter.h"
#include "tools/ProgressLine.h"
#include "tools/ScanArguments.h"
#include "tools/ScanJson.h"
#include "tools/ScanOutput.h"
#include "tools/ScanRunner.h"
#include "tools/StopSignals.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>

#include <cerrno>
#include <csignal>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace
{
// A scan that a signal has stopped ends with this and the number of the signal.
constexpr int signalStatus = 128;

enum Status { Done = 0, CannotWrite = 1, CannotRead = 1, CannotStart = 1, BadArguments = 2 };

// A channel that is closed would be taken by the first file that is opened, and the list or a message
// be written into that. What stands in for it cannot be written or read, as if it were closed still.
void occupyClosedChannels()
{
    const int unusable[] = {O_WRONLY, O_RDONLY, O_RDONLY}; // input, output, errors
    for (int channel = STDIN_FILENO; channel <= STDERR_FILENO; ++channel) {
        if (::fcntl(channel, F_GETFD) < 0) {
            ::open("/dev/null", unusable[channel]); // the lowest free number, which is this one
        }
    }
}

void complain(const QString &reason)
{
    ScanOutput output(STDERR_FILENO);
    output.write(QFile::encodeName(QStringLiteral("twinsift-scan: %1\n").arg(reason)));
    output.flush();
}

int finish(ScanOutput *output)
{
    if (output->flush()) {
        return Done;
    }
    // Who ignores the signal for it is answered as if he did not.
    if (errno == EPIPE) {
        return signalStatus + SIGPIPE;
    }
    complain(QStringLiteral("cannot write: %1").arg(qt_error_string(errno)));
    return CannotWrite;
}

int print(const QString &text)
{
    ScanOutput output(STDOUT_FILENO);
    output.write(LocalText::encode(text));
    return finish(&output);
}

int printGroups(const ScanReport &report, const ScanArguments &arguments)
{
    ScanOutput output(STDOUT_FILENO);
    const QVector<ReportedGroup> groups = GroupWriter::sorted(report.groups, arguments.order);
    if (arguments.isJoined) {
        for (const QStringList &group : report.joinedGroups) {
            GroupWriter::writeText(group, arguments, &output);
        }
    } else if (arguments.format == ScanArguments::Format::Json) {
        ScanJson::write(groups, report, arguments, &output);
    } else if (arguments.format == ScanArguments::Format::Csv) {
        GroupWriter::writeCsv(groups, &output);
    } else {
        for (const ReportedGroup &group : groups) {
            GroupWriter::writeText(group.paths, arguments, &output);
        }
    }
    return finish(&output);
}

// One line for each path, whatever its name is made of.
void nameSkipped(const ScanReport &report)
{
    ScanOutput output(STDERR_FILENO);
    for (const SkippedPath &skipped : report.skipped) {
        output.write("twinsift-scan: ");
        for (const char byte : skipped.path) {
            const bool isControl = (byte & 0xE0) == 0 || byte == 0x7F;
            output.write(isControl ? '\\' + QByteArray::number(byte, 8).rightJustified(3, '0')
                                   : QByteArray(1, byte));
        }
        output.write(": " + LocalText::encode(skipped.reason) + '\n');
    }
    output.flush();
}

void printSummary(const ScanReport &report)
{
    const auto line = [](const char *name, const QByteArray &value) -> QByteArray {
        return QByteArray(name).leftJustified(18) + value + '\n';
    };
    const qint64 bytes = report.freeableBytes();
    ScanOutput output(STDERR_FILENO);
    output.write(line("files looked at", QByteArray::number(report.filesFound)));
    output.write(line("skipped", QByteArray::number(report.skipped.size())));
    output.write(line("groups", QByteArray::number(report.groups.size())));
    output.write(line("redundant files", QByteArray::number(report.redundantFiles())));
    output.write(line("could be freed",
                      bytes < 1024
                          ? ByteText::of(bytes)
                          : QByteArray::number(bytes) + " bytes (" + ByteText::of(bytes) + ')'));
    output.write(line("seconds",
                      QByteArray::number(static_cast<double>(report.milliseconds) / 1000, 'f', 3)));
    output.flush();
}

int finishScan(const ScanReport &report, const ScanArguments &arguments, bool isShown)
{
    if (arguments.printsMessages) {
        nameSkipped(report);
    }
    const int status = printGroups(report, arguments);
    if (status != Done) {
        return status;
    }
    if (arguments.printsSummary || (isShown && !arguments.isJoined)) {
        printSummary(report);
    }
    if (StopSignals::number() != 0) {
        return signalStatus + StopSignals::number();
    }
    return arguments.printsMessages && !report.skipped.isEmpty() ? CannotRead : Done;
}

int scan(const ScanArguments &arguments)
{
    // Each file that cannot be read is named once, at the end.
    if (!arguments.printsEvents) {
        QLoggingCategory::setFilterRules(QStringLiteral("default.critical=false"));
    }
    const bool isShown =
        !arguments.printsEvents && !arguments.isQuiet && ::isatty(STDERR_FILENO) == 1;
    ScanProgress::instance()->isWatched = isShown;
    std::unique_ptr<ProgressLine> progress;
    if (isShown) {
        progress = std::make_unique<ProgressLine>(STDERR_FILENO, nullptr);
    }
    const StopSignals stopSignals(nullptr);
    ScanRunner runner(arguments, nullptr);
    QObject::connect(&stopSignals, &StopSignals::caught, &runner, &ScanRunner::stop);
    QObject::connect(&runner, &ScanRunner::finished, &runner, [&] {
        progress.reset();
        QCoreApplication::exit(finishScan(runner.report(), arguments, isShown));
    });
    if (!runner.start()) {
        progress.reset();
        complain(QStringLiteral("the system gives no thread to search on"));
        return CannotStart;
    }
    return QCoreApplication::exec();
}
} // namespace

int main(int argc, char **argv)
{
    occupyClosedChannels();
    const QCoreApplication application(argc, argv);
    LocalText::useUtf8InPlainLocale();
    const ScanArguments arguments = ScanArguments::parse(QCoreApplication::arguments());
    switch (arguments.action) {
    case ScanArguments::Action::ShowHelp:
        return print(arguments.helpText);
    case ScanArguments::Action::ShowVersion:
        return print(QStringLiteral("twinsift-scan %1\n").arg(QLatin1String(Product::version)));
    case ScanArguments::Action::Refuse:
        complain(arguments.error);
        return BadArguments;
    case ScanArguments::Action::Scan:
        break;
    }
    return scan(arguments);
}
