// SPDX-License-Identifier: MIT
#include "tools/SignalTrace.h"

#include "engine/FileFinderEngine.h"

#include <QFile>

SignalTrace::SignalTrace(FileFinderEngine *observedEngine, int fileDescriptor, int stopAfterCount)
    : engine(observedEngine)
    , isPrinting(fileDescriptor >= 0)
    , stopAfter(stopAfterCount)
    , output(fileDescriptor)
{
    using Engine = FileFinderEngine;
    connect(engine, &Engine::findAllFilesStarted, this, [this] { add("findAllFilesStarted"); });
    connect(engine, &Engine::findAllFilesFinished, this, [this] { add("findAllFilesFinished"); });
    connect(engine, &Engine::findDuplicatedFilesStarted, this, [this] {
        add("findDuplicatedFilesStarted");
    });
    connect(engine,
            &Engine::countingFilesInFolder,
            this,
            [this](int filesCount, const QString &folder) {
                add("countingFilesInFolder\t" + QByteArray::number(filesCount) + '\t'
                    + QFile::encodeName(folder));
            });
    connect(engine,
            &Engine::countingFindFilesDuplicated,
            this,
            [this](int files, int grouped, qint64 bytes) {
                add("countingFindFilesDuplicated\t" + QByteArray::number(files) + '\t'
                    + QByteArray::number(grouped) + '\t' + QByteArray::number(bytes));
            });
    connect(engine,
            &Engine::findDuplicatedFilesFinished,
            this,
            [this](const QList<QStringList> &groups) {
                add("findDuplicatedFilesFinished\t" + QByteArray::number(groups.size()));
            });
    connect(engine, &Engine::addedDuplicatedPath, this, [this](const QString &path) {
        add("addedDuplicatedPath\t" + QFile::encodeName(path));
    });
}

void SignalTrace::add(const QByteArray &line)
{
    if (isPrinting) {
        output.write(line + '\n');
        output.flush();
    }
    ++count;
    if (count == stopAfter) {
        QMetaObject::invokeMethod(engine, "stopFinder", Qt::QueuedConnection);
    }
}
