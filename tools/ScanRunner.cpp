// SPDX-License-Identifier: MIT
#include "tools/ScanRunner.h"

#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "tools/ScanArguments.h"
#include "tools/SignalTrace.h"

#include <unistd.h>

ScanRunner::ScanRunner(const ScanArguments &arguments, QObject *parent)
    : QObject(parent)
    , engine(new FileFinderEngine(nullptr, nullptr, nullptr))
{
    Configuration::instance()->folders = arguments.folders;
    Configuration::instance()->scanProfile = arguments.profile;
    if (arguments.printsEvents || arguments.stopAfter > 0) {
        auto *const trace = new SignalTrace(engine,
                                            arguments.printsEvents ? STDERR_FILENO : -1,
                                            arguments.stopAfter);
        trace->moveToThread(&thread);
        connect(&thread, &QThread::finished, trace, &QObject::deleteLater);
    }
    engine->moveToThread(&thread);
    connect(&thread, &QThread::finished, engine, &QObject::deleteLater);
    connect(engine, &FileFinderEngine::findDuplicatedFilesFinished, this, &ScanRunner::finished);
    thread.start();
}

ScanRunner::~ScanRunner()
{
    thread.requestInterruption();
    thread.quit();
    thread.wait();
}

void ScanRunner::start()
{
    QMetaObject::invokeMethod(engine, "startFinder", Qt::QueuedConnection);
}
