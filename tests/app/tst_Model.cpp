// SPDX-License-Identifier: MIT
#include "app/Model.h"
#include "tests/app/EventRecorder.h"
#include "tests/support/TestCase.h"
#include "tests/support/Toolkit.h"

#include <QMetaMethod>
#include <QThread>

class tst_Model final : public TestCase
{
    Q_OBJECT

private slots:
    void hasOneSignalAndNoSlots();
    void deliversBeforeItReturns();
    void deliversInTheOrderOfConnection();
    void dropsEventsOfOtherThreads();
    void leavesThePointerTypeUnregistered();
};

namespace
{
// Runs what is given on a thread of its own and waits for it.
template<typename Function>
void runElsewhere(Function function)
{
    const std::unique_ptr<QThread> thread(QThread::create(function));
    thread->start();
    thread->wait();
}
} // namespace

void tst_Model::hasOneSignalAndNoSlots()
{
    // The hub offers the one signal and nothing else to connect to.
    const QMetaObject &meta = Model::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(method.methodSignature(), QByteArray("modelEvent(const ModelEvent*)"));
}

void tst_Model::deliversBeforeItReturns()
{
    // Receivers on the Model's thread have run when the call returns, for every type of event.
    Model model(nullptr);
    const EventRecorder recorder(&model);
    model.emitModelEvent(FindAllFilesStartedEvent());
    model.countingFilesInFolderChanged(3, QStringLiteral("/a"));
    model.emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(QStringLiteral("/f")));
    model.emitModelEvent(FindDuplicatedFilesStoppedEvent());
    model.emitModelEvent(FindDuplicatedFilesFinishedEvent(QList<QStringList>()));
    QCOMPARE(recorder.events,
             QStringList({QStringLiteral("2"),
                          QStringLiteral("0 3 /a"),
                          QStringLiteral("5 /f"),
                          QStringLiteral("7"),
                          QStringLiteral("6 ")}));
}

void tst_Model::deliversInTheOrderOfConnection()
{
    // The page that connected itself first sees an event first.
    Model model(nullptr);
    QStringList order;
    connect(&model, &Model::modelEvent, this, [&order] { order.append(QStringLiteral("first")); });
    connect(&model, &Model::modelEvent, this, [&order] { order.append(QStringLiteral("second")); });
    model.emitModelEvent(FindAllFilesFinishedEvent());
    QCOMPARE(order, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

void tst_Model::dropsEventsOfOtherThreads()
{
    // An event made on another thread reaches nobody, neither at once nor later.
    Model model(nullptr);
    const EventRecorder recorder(&model);
    runElsewhere([&model] {
        model.emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(QStringLiteral("/f")));
        model.emitModelEvent(FindDuplicatedFilesStoppedEvent());
        model.countingFilesInFolderChanged(1, QStringLiteral("/a"));
    });
    QCoreApplication::processEvents();
    QCOMPARE(recorder.events, QStringList());
}

void tst_Model::leavesThePointerTypeUnregistered()
{
    // Nothing makes the pointer of an event a type that can be queued.
    Model model(nullptr);
    const EventRecorder recorder(&model);
    model.emitModelEvent(FindAllFilesStartedEvent());
    QVERIFY(!Toolkit::knowsType("const ModelEvent*"));
}

TWINSIFT_TEST_MAIN(tst_Model)
#include "tst_Model.moc"
