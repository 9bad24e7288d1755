// SPDX-License-Identifier: MIT
#include "app/Product.h"
#include "tools/ScanArguments.h"
#include "tools/ScanOutput.h"
#include "tools/ScanRunner.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextCodec>

#include <cerrno>
#include <clocale>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace
{
enum Status { Done = 0, CannotWrite = 1, BadArguments = 2 };

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

// The plain locale knows ASCII alone, and the toolkit would mangle all other names.
void useUtf8InPlainLocale()
{
    const char *const locale = std::setlocale(LC_CTYPE, nullptr);
    if (std::strcmp(locale, "C") == 0 || std::strcmp(locale, "POSIX") == 0) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    }
}

void complain(const QString &reason)
{
    ScanOutput output(STDERR_FILENO);
    output.write(QFile::encodeName(QStringLiteral("twinsift-scan: %1\n").arg(reason)));
    output.flush();
}

Status finish(ScanOutput *output)
{
    if (output->flush()) {
        return Done;
    }
    complain(QStringLiteral("cannot write: %1").arg(qt_error_string(errno)));
    return CannotWrite;
}

Status print(const QString &text)
{
    ScanOutput output(STDOUT_FILENO);
    output.write(text.toLocal8Bit());
    return finish(&output);
}

Status printGroups(const QList<QStringList> &groups, bool print0)
{
    const char separator = print0 ? '\0' : '\n';
    ScanOutput output(STDOUT_FILENO);
    for (const QStringList &group : groups) {
        for (const QString &path : group) {
            output.write(QFile::encodeName(path) + separator);
        }
        output.write(QByteArray(1, separator));
    }
    return finish(&output);
}

int scan(const ScanArguments &arguments)
{
    ScanRunner runner(arguments, nullptr);
    const bool print0 = arguments.print0;
    QObject::connect(&runner,
                     &ScanRunner::finished,
                     &runner,
                     [print0](const QList<QStringList> &groups) {
                         QCoreApplication::exit(printGroups(groups, print0));
                     });
    runner.start();
    return QCoreApplication::exec();
}
} // namespace

int main(int argc, char **argv)
{
    occupyClosedChannels();
    const QCoreApplication application(argc, argv);
    useUtf8InPlainLocale();
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
