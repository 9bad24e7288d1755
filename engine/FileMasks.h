// SPDX-License-Identifier: MIT
#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVector>

/**
 * The wildcard masks of the files to take, read as the toolkit reads the name filters of a folder
 * listing: case is ignored, the whole name must match, no mask at all takes every file, a malformed
 * one takes none.
 *
 * The mask "*.*" stands for every file. The toolkit would leave out names without a dot.
 */
class FileMasks final
{
public:
    explicit FileMasks(const QStringList &masks);

    bool match(const QString &fileName) const;

private:
    bool isEveryFile;
    // The usual masks, a star and an ending, without their star.
    QStringList endings;
    QVector<QRegularExpression> patterns;
};
