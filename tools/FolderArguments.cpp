// SPDX-License-Identifier: MIT
#include "tools/FolderArguments.h"

#include "engine/FolderListing.h"
#include "engine/WalkOptions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cstdio>
#include <utility>

namespace
{
QString parentOf(const QString &folder)
{
    const auto slash = folder.lastIndexOf(QLatin1Char('/'));
    return slash > 0 ? folder.left(slash) : QStringLiteral("/");
}

// Whether the walk of the parent goes on into the folder.
bool isEntered(const QString &folder, const QString &parent, const WalkOptions &options)
{
    const QFileInfo info(folder);
    return (options.takesHidden || !info.fileName().startsWith(QLatin1Char('.')))
        && (options.followsLinks || !info.isSymLink())
        && (!options.staysOnFileSystem || FolderListing::areOnOneFileSystem(folder, parent));
}

bool isReachedFromAny(const QString &folder,
                      const QSet<QString> &folders,
                      const WalkOptions &options)
{
    const QString top = QStringLiteral("/");
    for (QString below = folder; below != top;) {
        const QString parent = parentOf(below);
        if (!isEntered(below, parent, options)) {
            return false;
        }
        if (folders.contains(parent)) {
            return true;
        }
        below = parent;
    }
    return false;
}
} // namespace

bool FolderArguments::readList(const QString &fileName, QStringList *names, QString *error)
{
    QFile file(fileName);
    const bool isOpen = fileName == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                       : file.open(QIODevice::ReadOnly);
    const QByteArray list = isOpen ? file.readAll() : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        *error = QStringLiteral("cannot read \"%1\": %2").arg(fileName, file.errorString());
        return false;
    }
    for (const QByteArray &name : list.split(list.contains('\0') ? '\0' : '\n')) {
        if (!name.isEmpty()) {
            names->append(QFile::decodeName(name));
        }
    }
    return true;
}

bool FolderArguments::reduce(const QStringList &names,
                             const WalkOptions &options,
                             QStringList *folders,
                             QString *error)
{
    QStringList all;
    // Null where it has been removed; an absolute path made of that would name another place.
    const QString current = QDir::currentPath();
    for (const QString &name : names) {
        // Absolute before it is looked at: the toolkit takes ":/" for what is compiled into it.
        const bool isRelative = !name.isEmpty() && !name.startsWith(QLatin1Char('/'));
        const QString path = isRelative ? current + QLatin1Char('/') + name : name;
        const QFileInfo info(path);
        const bool isNowhere = isRelative && current.isEmpty();
        if (isNowhere || !info.isDir()) {
            *error = !isNowhere && info.exists()
                ? QStringLiteral("\"%1\" is not a folder").arg(name)
                : QStringLiteral("\"%1\" does not exist").arg(name);
            return false;
        }
        all.append(QDir::cleanPath(path));
    }
    all.removeDuplicates();
    const QSet<QString> set(all.cbegin(), all.cend());
    for (const QString &folder : std::as_const(all)) {
        if (!isReachedFromAny(folder, set, options)) {
            folders->append(folder);
        }
    }
    *error = QStringLiteral("no folder is given");
    return !folders->isEmpty();
}
