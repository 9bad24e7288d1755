// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

/**
 * 200 files whose contents are known: groups of equal ones, files of the same size that differ in a
 * byte, beginnings of others, empty ones, and a link that leads back up.
 *
 * At most one content of each size has twins, so that a group never holds two contents.
 */
class FaultTree final
{
public:
    static constexpr int fileCount = 200;

    /** Makes the files; the folder must not hold any. */
    explicit FaultTree(const QString &root);

    QString root() const { return rootPath; }
    bool isEmpty(const QString &path) const { return contents.value(path) == emptyContent; }
    /** Whether all are files of the tree that have the same content. */
    bool areEqual(const QStringList &paths) const;
    /** The files of equal content, without the file that is left out. */
    QSet<QSet<QString>> groups(const QString &leftOut = QString()) const;
    /** Names, sizes, times of change and contents of all below the folder. */
    static QStringList snapshot(const QString &folder);

private:
    static constexpr int emptyContent = 0;

    void add(const QString &name, const QByteArray &content, int contentNumber);
    void addClass(int number);

    QString rootPath;
    QHash<QString, int> contents;
};
