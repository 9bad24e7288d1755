// SPDX-License-Identifier: MIT
#include "tools/GroupReview.h"

#include "engine/ContentClasses.h"
#include "engine/FileTime_posix.h"
#include "engine/FolderListing.h"

#include <QFile>
#include <QHash>
#include <QPair>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <map>
#include <utility>

#include <sys/stat.h>

namespace
{
struct Entry {
    QString path;
    struct stat status;
};

// The names of one file of the file system.
struct Names {
    QVector<int> entries;
    quint64 linkCount = 1;
};

// Null when it is the file that was read.
QString whyNotSame(const ScannedFile &file, struct stat *status)
{
    if (::lstat(QFile::encodeName(file.path).constData(), status) != 0) {
        return qt_error_string(errno);
    }
    const bool isSame = S_ISREG(status->st_mode) && status->st_size == file.size
        && FileTime::modified(*status) == file.modified;
    return isSame ? QString() : QStringLiteral("changed since it was read");
}

// The path with a folder that has no links in it.
QString plainPath(const QString &path)
{
    const auto slash = path.lastIndexOf(QLatin1Char('/'));
    const QString folder = FolderListing::canonicalPath(path.left(slash + 1));
    return folder.isEmpty() ? path : folder + path.mid(slash);
}

// The same bytes stand on several paths: those that are names of their own.
QVector<int> namesOfTheirOwn(const QVector<Entry> &entries, const Names &names)
{
    if (names.entries.size() == 1 || names.linkCount == 1) {
        return names.entries.mid(0, 1);
    }
    QVector<int> kept;
    QSet<QString> known;
    for (const int entry : names.entries) {
        const QString path = plainPath(entries.at(entry).path);
        if (!known.contains(path)) {
            known.insert(path);
            kept.append(entry);
        }
    }
    // A folder may be mounted twice, which no path tells.
    return kept.mid(0, static_cast<int>(std::min<quint64>(names.linkCount, INT_MAX)));
}
} // namespace

ReportedGroup GroupReview::review(const QVector<ScannedFile> &files, QVector<SkippedPath> *skipped)
{
    QVector<Entry> entries;
    std::map<QPair<quint64, quint64>, Names> byFile;
    for (const ScannedFile &file : files) {
        Entry entry = {file.path, {}};
        const QString reason = whyNotSame(file, &entry.status);
        if (!reason.isNull()) {
            skipped->append({QFile::encodeName(file.path), reason});
            continue;
        }
        Names &names = byFile[{entry.status.st_dev, entry.status.st_ino}];
        names.entries.append(static_cast<int>(entries.size()));
        // Some file systems count no links at all.
        names.linkCount = std::max<quint64>(1, entry.status.st_nlink);
        entries.append(entry);
    }
    ReportedGroup group;
    QVector<int> kept;
    for (const auto &file : byFile) {
        const QVector<int> own = namesOfTheirOwn(entries, file.second);
        kept += own;
        const bool isFirst = own.first() == 0;
        if (!isFirst && static_cast<quint64>(own.size()) == file.second.linkCount) {
            group.freeableBytes += files.first().size;
        }
    }
    if (kept.size() < 2) {
        return {};
    }
    std::sort(kept.begin(), kept.end());
    for (const int entry : std::as_const(kept)) {
        group.paths.append(entries.at(entry).path);
    }
    group.size = files.first().size;
    return group;
}

QVector<QVector<ScannedFile>> GroupReview::prove(const QVector<QVector<ScannedFile>> &groups,
                                                 const GoOn &goOn,
                                                 QVector<SkippedPath> *skipped)
{
    QVector<QVector<ScannedFile>> proven;
    for (const QVector<ScannedFile> &group : groups) {
        QStringList paths;
        for (const ScannedFile &file : group) {
            paths.append(file.path);
        }
        ContentClasses classes(paths, goOn);
        if (!classes.sort()) {
            break;
        }
        std::map<int, QVector<ScannedFile>> parts;
        for (int i = 0; i < group.size(); ++i) {
            const ContentClasses::File &file = classes.files()[static_cast<std::size_t>(i)];
            if (file.isReadable) {
                parts[file.first].append({paths.at(i), file.size, file.modified});
            } else {
                skipped->append({QFile::encodeName(paths.at(i)), file.error});
            }
        }
        for (const auto &part : parts) {
            if (part.second.size() > 1) {
                proven.append(part.second);
            }
        }
    }
    return proven;
}
