// SPDX-License-Identifier: MIT
#include "app/Model.h"

#include "app/ModelEvent.h"

#include <QThread>

Model::Model(QObject *parent)
    : QObject(parent)
{
}

void Model::emitModelEvent(const ModelEvent &event)
{
    if (QThread::currentThread() == thread()) {
        emit modelEvent(&event);
    }
}

void Model::countingFilesInFolderChanged(int size, const QString &folder)
{
    emitModelEvent(CountingFilesInFolderEvent(size, folder));
}
