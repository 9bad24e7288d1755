// SPDX-License-Identifier: MIT
#include "tools/GroupWriter.h"

#include "tools/ScanOutput.h"

#include <QFile>

#include <algorithm>

QVector<ReportedGroup> GroupWriter::sorted(QVector<ReportedGroup> groups,
                                           ScanArguments::Order order)
{
    const auto sort = [&groups](const auto &isBefore) {
        std::stable_sort(groups.begin(), groups.end(), isBefore);
    };
    using Group = ReportedGroup;
    switch (order) {
    case ScanArguments::Order::Found:
        break;
    case ScanArguments::Order::Path:
        sort([](const Group &a, const Group &b) {
            return QFile::encodeName(a.paths.first()) < QFile::encodeName(b.paths.first());
        });
        break;
    case ScanArguments::Order::Size:
        sort([](const Group &a, const Group &b) { return a.size > b.size; });
        break;
    case ScanArguments::Order::Count:
        sort([](const Group &a, const Group &b) { return a.paths.size() > b.paths.size(); });
        break;
    }
    return groups;
}

void GroupWriter::writeText(const QStringList &group,
                            const ScanArguments &arguments,
                            ScanOutput *output)
{
    const char end = arguments.print0 ? '\0' : '\n';
    for (int i = arguments.omitsFirst ? 1 : 0; i < group.size(); ++i) {
        output->write(QFile::encodeName(group.at(i)) + end);
    }
    if (arguments.separatesGroups) {
        output->write(QByteArray(1, end));
    }
}

void GroupWriter::writeCsv(const QVector<ReportedGroup> &groups, ScanOutput *output)
{
    output->write("group,size,path\r\n");
    int number = 0;
    for (const ReportedGroup &group : groups) {
        const QByteArray start =
            QByteArray::number(++number) + ',' + QByteArray::number(group.size) + ",\"";
        for (const QString &path : group.paths) {
            output->write(start + QFile::encodeName(path).replace('"', "\"\"") + "\"\r\n");
        }
    }
}
