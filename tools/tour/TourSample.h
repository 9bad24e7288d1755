// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QString>

/**
 * The folder of files that a tour shows when nobody names one: photos, documents and music with
 * copies of them, files that differ from a copy in one byte, empty files, names in several scripts.
 * The same files each time.
 */
class TourSample final
{
public:
    /** Makes the files below the folder, which must be empty. */
    explicit TourSample(const QString &folder);

    int filesCount() const { return files; }
    /** False when some file could not be written. */
    bool isComplete() const { return complete; }

private:
    void addPhotos();
    void addDocuments();
    void addMusic();
    void addOddities();
    void write(const QString &name, const QByteArray &content);
    void copy(const QString &from, const QString &to);

    QDir root;
    int files = 0;
    bool complete = true;
};
