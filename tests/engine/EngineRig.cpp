// SPDX-License-Identifier: MIT
#include "tests/engine/EngineRig.h"

#include "engine/Background.h"
#include "engine/Configuration.h"

#include <utility>

EngineRig::EngineRig(Model *model, Controller *controller)
    : finder(std::make_unique<FileFinderEngine>(model, controller, nullptr))
{
    using Engine = FileFinderEngine;
    Engine *const source = finder.get();
    QObject::connect(source, &Engine::findAllFilesStarted, [this] {
        add(QStringLiteral("findAllFilesStarted"));
    });
    QObject::connect(source, &Engine::findAllFilesFinished, [this] {
        add(QStringLiteral("findAllFilesFinished"));
    });
    QObject::connect(source, &Engine::findDuplicatedFilesStarted, [this] {
        add(QStringLiteral("findDuplicatedFilesStarted"));
    });
    QObject::connect(source, &Engine::countingFilesInFolder, [this](int n, const QString &folder) {
        add(QStringLiteral("countingFilesInFolder %1 %2").arg(QString::number(n), folder));
    });
    QObject::connect(
        source,
        &Engine::countingFindFilesDuplicated,
        [this](int n, int m, qint64 sum) {
            add(QStringLiteral("countingFindFilesDuplicated %1 %2 %3").arg(n).arg(m).arg(sum));
        });
    QObject::connect(source,
                     &Engine::findDuplicatedFilesFinished,
                     [this](const QList<QStringList> &found) {
                         lastGroups = found;
                         add(QStringLiteral("findDuplicatedFilesFinished %1").arg(found.size()));
                     });
    QObject::connect(source, &Engine::addedDuplicatedPath, [this](const QString &path) {
        add(QStringLiteral("addedDuplicatedPath %1").arg(path));
    });
    finder->moveToThread(&thread);
    // TWINSIFT_THREADS=16 reads ahead with so many threads.
    Background::fixThreadCount(qEnvironmentVariableIntValue("TWINSIFT_THREADS"));
    // New threads have the rights of the thread that starts them.
    Background::waitForDone(-1);
    thread.start();
}

EngineRig::~EngineRig()
{
    thread.requestInterruption();
    thread.quit();
    thread.wait();
    Background::waitForDone(-1);
}

QStringList EngineRig::scan(const QStringList &folders, const ScanProfile &profile)
{
    Configuration::instance()->folders = folders;
    Configuration::instance()->scanProfile = profile;
    lines.clear();
    run([this] { finder->startFinder(); });
    return lines;
}

void EngineRig::run(const std::function<void()> &function)
{
    QMetaObject::invokeMethod(finder.get(), function, Qt::BlockingQueuedConnection);
}

void EngineRig::atSignal(int number, const std::function<void()> &action)
{
    actions.insert(number, action);
}

void EngineRig::stopAtSignal(int number)
{
    atSignal(number, [this] { post("stopFinder"); });
}

void EngineRig::post(const char *slot)
{
    QMetaObject::invokeMethod(finder.get(), slot, Qt::QueuedConnection);
}

ScanProfile EngineRig::advanced(const QString &checksum)
{
    ScanProfile profile;
    profile.matchByteByByte = false;
    profile.advancedMatch = true;
    profile.md5Hash = checksum == QLatin1String("md5");
    profile.sha1Hash = checksum == QLatin1String("sha1");
    profile.crcHash = checksum == QLatin1String("crc");
    return profile;
}

void EngineRig::add(const QString &line)
{
    lines.append(line);
    const auto action = actions.take(static_cast<int>(lines.size()));
    if (action) {
        action();
    }
}
