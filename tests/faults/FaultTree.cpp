// SPDX-License-Identifier: MIT
#include "tests/faults/FaultTree.h"

#include "tests/support/TempTree.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <utility>

namespace
{
constexpr int classCount = 36;
constexpr int firstDifferentContent = 1000;

// Every content begins like the others, so that shorter files are beginnings of longer ones.
QByteArray beginning(int bytes)
{
    QByteArray data;
    data.reserve(bytes);
    quint32 value = 1;
    while (data.size() < bytes) {
        value = value * 1664525 + 1013904223;
        data.append(static_cast<char>(value >> 24));
    }
    return data;
}

// Within a step of the comparison, at its edges, in one piece, in several.
int bytesOfClass(int number)
{
    switch (number % 4) {
    case 0:
        return 256 * (number + 1);
    case 1:
        return 100 + number * 7;
    case 2:
        return 5000 + number * 13;
    default:
        return number == 35 ? 150000 : 4096 + 256 * number;
    }
}

QString nameOf(int folder, const QString &name)
{
    const QString top = QStringLiteral("f%1").arg(folder % 4);
    return folder < 4 ? QStringLiteral("%1/%2").arg(top, name)
                      : QStringLiteral("%1/g%2/%3").arg(top).arg(folder).arg(name);
}
} // namespace

FaultTree::FaultTree(const QString &root)
    : rootPath(TempTree(root).root())
{
    for (int number = 0; number < classCount; ++number) {
        addClass(number);
    }
    auto number = contents.size();
    for (int empty = 0; empty < 4; ++empty, ++number) {
        add(nameOf(empty, QStringLiteral("empty%1.bin").arg(empty)), QByteArray(), emptyContent);
    }
    for (int unique = 0; number < fileCount; ++unique, ++number) {
        add(nameOf(unique % 10, QStringLiteral("unique%1.txt").arg(unique)),
            beginning(9000 + unique),
            2 * firstDifferentContent + unique);
    }
    TempTree(rootPath).link(QStringLiteral("f2/g6/up"), QStringLiteral("../.."));
}

// Two or three equal files and two of the same size that differ, in the first byte and in the last.
void FaultTree::addClass(int number)
{
    const QByteArray content = beginning(bytesOfClass(number));
    for (int copy = 0; copy < 2 + number % 2; ++copy) {
        add(nameOf((number + 3 * copy) % 10, QStringLiteral("c%1_%2.bin").arg(number).arg(copy)),
            content,
            1 + number);
    }
    for (int other = 0; other < 2; ++other) {
        QByteArray changed = content;
        const auto at = other == 0 ? 0 : changed.size() - 1;
        changed[at] = static_cast<char>(changed.at(at) ^ 1);
        add(nameOf((number + other) % 10, QStringLiteral("d%1_%2.bin").arg(number).arg(other)),
            changed,
            firstDifferentContent + 2 * number + other);
    }
}

void FaultTree::add(const QString &name, const QByteArray &content, int contentNumber)
{
    contents.insert(TempTree(rootPath).file(name, content), contentNumber);
}

bool FaultTree::areEqual(const QStringList &paths) const
{
    for (const QString &path : paths) {
        if (!contents.contains(path) || contents.value(path) != contents.value(paths.first())) {
            return false;
        }
    }
    return true;
}

QSet<QSet<QString>> FaultTree::groups(const QString &leftOut) const
{
    QHash<int, QSet<QString>> byContent;
    for (auto it = contents.cbegin(); it != contents.cend(); ++it) {
        if (it.key() != leftOut) {
            byContent[it.value()].insert(it.key());
        }
    }
    QSet<QSet<QString>> groups;
    for (const QSet<QString> &group : std::as_const(byContent)) {
        if (group.size() > 1) {
            groups.insert(group);
        }
    }
    return groups;
}

QStringList FaultTree::snapshot(const QString &folder)
{
    QStringList lines;
    QDirIterator it(folder,
                    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        const QByteArray content = info.isFile() ? TempTree::read(info.filePath()) : QByteArray();
        lines.append(QStringLiteral("%1 %2 %3 %4")
                         .arg(info.filePath())
                         .arg(info.size())
                         .arg(info.lastModified().toMSecsSinceEpoch())
                         .arg(QString::fromLatin1(
                             QCryptographicHash::hash(content, QCryptographicHash::Sha1).toHex())));
    }
    lines.sort();
    return lines;
}
