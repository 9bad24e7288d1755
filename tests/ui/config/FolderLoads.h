// SPDX-License-Identifier: MIT
#pragma once

#include <QFileSystemModel>
#include <QObject>
#include <QStringList>

/** Remembers which folders a file-system model has loaded since this object was made. */
class FolderLoads final : public QObject
{
    Q_OBJECT

public:
    explicit FolderLoads(QFileSystemModel *model)
    {
        connect(model, &QFileSystemModel::directoryLoaded, this, [this](const QString &path) {
            paths.append(path);
        });
    }

    bool contains(const QString &path) const { return paths.contains(path); }

private:
    QStringList paths;
};
