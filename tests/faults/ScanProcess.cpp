// SPDX-License-Identifier: MIT
#include "tests/faults/ScanProcess.h"

#include <QProcess>

namespace
{
constexpr int maxMilliseconds = 120000;

// A path ends in NUL, a group in one more.
QList<QByteArrayList> groupsOf(const QByteArray &output)
{
    QList<QByteArrayList> groups;
    QByteArrayList group;
    decltype(output.size()) start = 0;
    for (auto end = output.indexOf('\0'); end >= 0; end = output.indexOf('\0', start)) {
        if (end > start) {
            group.append(output.mid(start, end - start));
        } else {
            groups.append(group);
            group.clear();
        }
        start = end + 1;
    }
    return groups;
}
} // namespace

ScanProcess::ScanProcess(const QStringList &arguments, const QProcessEnvironment &variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(variables);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral(TWINSIFT_SCAN),
                  QStringList{QStringLiteral("--print0")} + arguments);
    if (!process.waitForFinished(maxMilliseconds)) {
        process.kill();
        process.waitForFinished();
        return;
    }
    status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    groups = groupsOf(process.readAllStandardOutput());
    for (const QByteArray &line : process.readAllStandardError().split('\n')) {
        if (!line.isEmpty()) {
            messages.append(line);
        }
    }
}
