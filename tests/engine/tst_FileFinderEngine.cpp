// SPDX-License-Identifier: MIT
#include "app/Controller.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "tests/engine/EngineRig.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Toolkit.h"

#include <QDir>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTimer>

#include <memory>

class tst_FileFinderEngine final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void signalsAndSlots();
    void noFolders();
    void orderOfFolders();
    void traceOfSmallScan();
    void traceOfSmallScanAdvanced();
    void defaultProfileTakesEveryFile();
    void returnedListing();
    void pathsAreAbsoluteAndClean();
    void includeMasks();
    void excludeMasks_data();
    void excludeMasks();
    void sizeLimits_data();
    void sizeLimits();
    void hiddenEntries();
    void links();
    void ringOfLinks();
    void manyLinksToAFolder();
    void otherThings();
    void unreadableFolder();
    void missingFolder();
    void strangeNames();
    void sizeOfFile();
    void secondScan();
    void stopInSubfolder();
    void stopBeforeGrouping();
    void stopDuringFirstPass();
    void stopBetweenPairs();
    void stopBetweenPairsInMemory();
    void stopDuringAdvanced();
    void stopAtEverySignal_data();
    void stopAtEverySignal();
    void stopByTimer_data();
    void stopByTimer();
    void stopIsForgotten();
    void startDuringScan();
    void startDuringScanTakenBack();
    void interruption();
    void interruptionBeforeStart();
    void eventsOnTheModelsThread();
    void eventsFromAnotherThread();
    void controllerIsConnected();
    void noModelAndNoController();

private:
    QString file(const char *name, const QByteArray &content = QByteArray()) const;
    QStringList found() const;

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<EngineRig> rig;
};

namespace
{
constexpr int longWaitMilliseconds = 60000;

QString counted(int files, const QString &folder)
{
    return QStringLiteral("countingFilesInFolder %1 %2").arg(QString::number(files), folder);
}

QString grouped(int index, int files, qint64 bytes)
{
    return QStringLiteral("countingFindFilesDuplicated %1 %2 %3").arg(index).arg(files).arg(bytes);
}

const QString started = QStringLiteral("findAllFilesStarted");
const QString finished = QStringLiteral("findAllFilesFinished");
const QString groupingStarted = QStringLiteral("findDuplicatedFilesStarted");

QString groupingFinished(int groups)
{
    return QStringLiteral("findDuplicatedFilesFinished %1").arg(groups);
}

// The types and, of files, the paths of what a model delivers, on whatever thread.
class EventLog final : public QObject
{
    Q_OBJECT

public:
    explicit EventLog(Model *model)
    {
        // clang-format off
        connect(model, SIGNAL(modelEvent(const ModelEvent*)),
                this, SLOT(onModelEvent(const ModelEvent*)));
        // clang-format on
    }

    QStringList lines;

public slots:
    void onModelEvent(const ModelEvent *event)
    {
        QString line = QString::number(event->type);
        if (event->type == TypeAnalyzingCurrentDuplicatedFileEvent) {
            line += QLatin1Char(' ')
                + static_cast<const AnalyzingCurrentDuplicatedFileEvent *>(event)->currentFile;
        }
        lines.append(line);
    }
};
} // namespace

void tst_FileFinderEngine::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    rig = std::make_unique<EngineRig>();
}

QString tst_FileFinderEngine::file(const char *name, const QByteArray &content) const
{
    return tree->file(QString::fromUtf8(name), content);
}

// The accepted files, without the tree's own path.
QStringList tst_FileFinderEngine::found() const
{
    QStringList files = rig->engine()->foundFiles();
    const QString prefix = tree->root() + QLatin1Char('/');
    for (QString &path : files) {
        path.remove(0, prefix.size());
    }
    return files;
}

void tst_FileFinderEngine::signalsAndSlots()
{
    // Signals and slots are declared in a fixed order, with fixed arguments.
    const QMetaObject &meta = FileFinderEngine::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        methods.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QStringList wanted;
    for (const char *method : {"countingFilesInFolder(int,QString)",
                               "countingFindFilesDuplicated(int,int,qlonglong)",
                               "findAllFilesStarted()",
                               "findAllFilesFinished()",
                               "findDuplicatedFilesStarted()",
                               "findDuplicatedFilesFinished(QList<QStringList>)",
                               "addedDuplicatedPath(QString)",
                               "startFinder()",
                               "stopFinder()"}) {
        wanted.append(QLatin1String(method));
    }
    QCOMPARE(methods, wanted);
    QVERIFY(Toolkit::knowsType("QList<QStringList>"));
}

void tst_FileFinderEngine::noFolders()
{
    // Without a folder both phases run on nothing.
    QCOMPARE(rig->scan({}), QStringList({started, finished, groupingStarted, groupingFinished(0)}));
}

void tst_FileFinderEngine::orderOfFolders()
{
    // A folder reports after all below it, with the running total.
    file("A/1", "1");
    file("A/2", "22");
    file("B/3", "333");
    file("0", "4444");
    const QString root = tree->root();
    QCOMPARE(rig->scan({root}),
             QStringList({started,
                          counted(3, root + QStringLiteral("/A")),
                          counted(4, root + QStringLiteral("/B")),
                          counted(4, root),
                          finished,
                          groupingStarted,
                          groupingFinished(0)}));
    QCOMPARE(found(),
             QStringList({QStringLiteral("0"),
                          QStringLiteral("A/1"),
                          QStringLiteral("A/2"),
                          QStringLiteral("B/3")}));
}

void tst_FileFinderEngine::traceOfSmallScan()
{
    // Every signal of a small scan comes in its order, with its arguments.
    file("a", "same!");
    file("b", "same!");
    file("c", "same!");
    QCOMPARE(rig->scan({tree->root()}),
             QStringList({started,
                          counted(3, tree->root()),
                          finished,
                          groupingStarted,
                          grouped(0, 2, 10),
                          grouped(0, 3, 15),
                          groupingFinished(1)}));
}

void tst_FileFinderEngine::traceOfSmallScanAdvanced()
{
    // In the Advanced mode each file with a key has its signal, first files and empty ones as well.
    file("a", "same!");
    file("b");
    file("c", "same!");
    for (const char *checksum : {"md5", "sha1", "crc"}) {
        QCOMPARE(rig->scan({tree->root()}, EngineRig::advanced(QLatin1String(checksum))),
                 QStringList({started,
                              counted(3, tree->root()),
                              finished,
                              groupingStarted,
                              grouped(1, 0, 0),
                              grouped(2, 0, 0),
                              grouped(3, 2, 10),
                              groupingFinished(1)}));
    }
}

void tst_FileFinderEngine::defaultProfileTakesEveryFile()
{
    // A new profile lists every file that is not hidden.
    for (const char *name : {"a", "b.c", "d.e.f", "sub/g", "empty.h"}) {
        file(name);
    }
    tree->sparseFile(QStringLiteral("large"), Q_INT64_C(5) << 30);
    rig->scan({tree->root()});
    QCOMPARE(found().size(), 6);
}

void tst_FileFinderEngine::returnedListing()
{
    // A walk returns the folder's own files that match, accepted or not, and none from below.
    file("a.jpg");
    file("b.bak.jpg");
    file("c.png");
    file("sub/d.jpg");
    ScanProfile profile;
    profile.minSizeEnabled = true;
    profile.minSizeInKbytes = 1;
    Configuration::instance()->scanProfile = profile;
    QFileInfoList files;
    rig->run([&] { files = rig->engine()->getFiles({QStringLiteral("*.jpg")}, {}, tree->root()); });
    QCOMPARE(files.size(), 2);
    QCOMPARE(files.at(0).absoluteFilePath(), tree->path(QStringLiteral("a.jpg")));
    QCOMPARE(files.at(1).absoluteFilePath(), tree->path(QStringLiteral("b.bak.jpg")));
    QVERIFY(found().isEmpty());
}

void tst_FileFinderEngine::pathsAreAbsoluteAndClean()
{
    // Files have clean absolute paths; the signal names the folder as it was given.
    const QString path = file("sub/a");
    QVERIFY(QDir::setCurrent(tree->root()));
    for (const QString &name : {QStringLiteral("sub"),
                                QStringLiteral("./sub/../sub/"),
                                QString(tree->root() + QStringLiteral("//sub"))}) {
        const QStringList record = rig->scan({name});
        QCOMPARE(rig->engine()->foundFiles(), QStringList(path));
        QCOMPARE(record.at(1), counted(1, name));
    }
}

void tst_FileFinderEngine::includeMasks()
{
    // Include masks choose the files, ignoring case; "*.*" is every file; an empty piece is none.
    for (const char *name : {"a.jpg", "b.JPG", "c.png", "noextension", "sub/d.Jpg"}) {
        file(name);
    }
    ScanProfile profile;
    profile.includeMasks = QStringList{QStringLiteral("*.jpg")};
    rig->scan({tree->root()}, profile);
    QCOMPARE(found(),
             QStringList(
                 {QStringLiteral("a.jpg"), QStringLiteral("b.JPG"), QStringLiteral("sub/d.Jpg")}));
    profile.includeMasks = QStringList{QStringLiteral("*.*")};
    rig->scan({tree->root()}, profile);
    QCOMPARE(found().size(), 5);
    profile.includeMasks = QStringList{QString()};
    rig->scan({tree->root()}, profile);
    QVERIFY(found().isEmpty());
}

void tst_FileFinderEngine::excludeMasks_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QStringList>("wanted");
    const QString jpg = QStringLiteral("photo.jpg");
    const QString gz = QStringLiteral("a.tar.gz");
    const QString none = QStringLiteral("noextension");
    const QString dot = QStringLiteral("dot.");
    const QStringList all = {gz, dot, none, jpg};
    QTest::newRow("capitals") << QStringLiteral("*.JPG") << QStringList({gz, dot, none});
    QTest::newRow("last suffix") << QStringLiteral("*.gz") << QStringList({dot, none, jpg});
    QTest::newRow("both suffixes") << QStringLiteral("*.tar.gz") << all;
    QTest::newRow("prefix") << QStringLiteral("photo*") << all;
    QTest::newRow("every file") << QStringLiteral("*.*") << all;
    QTest::newRow("star") << QStringLiteral("*") << all;
    QTest::newRow("whole name") << jpg << all;
    QTest::newRow("no suffix") << QStringLiteral("*.") << QStringList({gz, jpg});
}

void tst_FileFinderEngine::excludeMasks()
{
    // Only a star, a dot and the last suffix exclude a file; there are no wildcards.
    QFETCH(QString, mask);
    QFETCH(QStringList, wanted);
    for (const char *name : {"photo.jpg", "a.tar.gz", "noextension", "dot."}) {
        file(name);
    }
    ScanProfile profile;
    profile.excludeMasks = QStringList({QStringLiteral("*.other"), mask});
    rig->scan({tree->root()}, profile);
    QCOMPARE(found(), wanted);
}

void tst_FileFinderEngine::sizeLimits_data()
{
    QTest::addColumn<qint64>("minimum");
    QTest::addColumn<qint64>("maximum");
    QTest::addColumn<QStringList>("wanted");
    const QString empty = QStringLiteral("0");
    const QString almost1 = QStringLiteral("1023");
    const QString one = QStringLiteral("1024");
    const QString almost1024 = QStringLiteral("1048575");
    const QString large = QStringLiteral("1048576");
    QTest::newRow("at least 1") << Q_INT64_C(1) << Q_INT64_C(-1)
                                << QStringList({one, almost1024, large});
    QTest::newRow("at most 0") << Q_INT64_C(-1) << Q_INT64_C(0) << QStringList({empty, almost1});
    QTest::newRow("at most 1023") << Q_INT64_C(-1) << Q_INT64_C(1023)
                                  << QStringList({empty, almost1, one, almost1024});
    QTest::newRow("at least 1024") << Q_INT64_C(1024) << Q_INT64_C(-1) << QStringList(large);
    QTest::newRow("exactly 1") << Q_INT64_C(1) << Q_INT64_C(1) << QStringList(one);
    QTest::newRow("nothing") << Q_INT64_C(2) << Q_INT64_C(1) << QStringList();
    QTest::newRow("beyond 32 bits") << (Q_INT64_C(1) << 40) << Q_INT64_C(-1) << QStringList();
}

void tst_FileFinderEngine::sizeLimits()
{
    // Limits are in whole kilobytes and include their own value; -1 stands for none.
    QFETCH(qint64, minimum);
    QFETCH(qint64, maximum);
    QFETCH(QStringList, wanted);
    for (const qint64 bytes : {0, 1023, 1024, 1048575, 1048576}) {
        tree->sparseFile(QString::number(bytes), bytes);
    }
    ScanProfile profile;
    profile.minSizeEnabled = minimum >= 0;
    profile.minSizeInKbytes = minimum;
    profile.maxSizeEnabled = maximum >= 0;
    profile.maxSizeInKbytes = maximum;
    rig->scan({tree->root()}, profile);
    QCOMPARE(found(), wanted);
}

void tst_FileFinderEngine::hiddenEntries()
{
    // Hidden files, and all below a hidden folder, are no part of a scan.
    file(".hidden");
    file(".folder/a");
    file("folder/.b");
    file("seen");
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(found(), QStringList(QStringLiteral("seen")));
    QCOMPARE(record.filter(QStringLiteral("countingFilesInFolder")).size(), 2);
    // A hidden folder that is chosen itself is walked.
    rig->scan({tree->path(QStringLiteral(".folder"))});
    QCOMPARE(found(), QStringList(QStringLiteral(".folder/a")));
}

void tst_FileFinderEngine::links()
{
    // Links to files are left out, links to folders followed, dead ones passed by.
    file("real/a");
    tree->link(QStringLiteral("b"), QStringLiteral("real/a"));
    tree->link(QStringLiteral("dead"), QStringLiteral("nowhere"));
    tree->link(QStringLiteral("linked"), QStringLiteral("real"));
    tree->link(QStringLiteral("again"), QStringLiteral("real"));
    rig->scan({tree->root()});
    QCOMPARE(
        found(),
        QStringList(
            {QStringLiteral("again/a"), QStringLiteral("linked/a"), QStringLiteral("real/a")}));
    QCOMPARE(rig->groups().size(), 1);
}

void tst_FileFinderEngine::ringOfLinks()
{
    // A link to the folder being walked, or to one above it, is not entered, and has no signal. A
    // real folder is always entered, also when a link has led to it before.
    file("top/a");
    file("top/sub/b");
    file("beside/c");
    tree->link(QStringLiteral("top/self"), QStringLiteral("."));
    tree->link(QStringLiteral("top/sub/up"), QStringLiteral(".."));
    tree->link(QStringLiteral("top/sub/whole"), tree->root());
    tree->link(QStringLiteral("top/sub/beside"), QStringLiteral("../../beside"));
    tree->link(QStringLiteral("beside/back"), QStringLiteral("../top/sub"));
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(found(),
             QStringList({QStringLiteral("beside/c"),
                          QStringLiteral("beside/back/b"),
                          QStringLiteral("beside/back/up/a"),
                          QStringLiteral("beside/back/up/sub/b"),
                          QStringLiteral("top/a"),
                          QStringLiteral("top/sub/b"),
                          QStringLiteral("top/sub/beside/c")}));
    QVERIFY(record.filter(QStringLiteral("self")).isEmpty());
    QVERIFY(record.filter(QStringLiteral("whole")).isEmpty());
    // A ring through a link on the way to the chosen folder is seen as well.
    const QString way = tree->link(QStringLiteral("way"), QStringLiteral("top"));
    rig->scan({way});
    QVERIFY(!found().filter(QStringLiteral("way/a")).isEmpty());
    QVERIFY(found().filter(QStringLiteral("way/self")).isEmpty());
    QVERIFY(found().filter(QStringLiteral("way/sub/up")).isEmpty());
}

void tst_FileFinderEngine::manyLinksToAFolder()
{
    // A folder is entered through links a thousand times in a scan, whichever chosen folder holds
    // them, and as often in the next one.
    file("outside/a");
    for (int i = 0; i < 600; ++i) {
        tree->link(QStringLiteral("first/%1").arg(i), tree->path(QStringLiteral("outside")));
        tree->link(QStringLiteral("second/%1").arg(i), tree->path(QStringLiteral("outside")));
    }
    const QStringList folders = {tree->path(QStringLiteral("first")),
                                 tree->path(QStringLiteral("second"))};
    for (int scan = 0; scan < 2; ++scan) {
        expectMessage(
            QtDebugMsg,
            QStringLiteral("Too many links lead to the folder: %1")
                .arg(QFileInfo(tree->path(QStringLiteral("outside"))).canonicalFilePath()));
        rig->scan(folders);
        QCOMPARE(rig->engine()->foundFiles().size(), 1000);
    }
}

void tst_FileFinderEngine::otherThings()
{
    // FIFOs are neither listed nor waited for. A link to one counts as an empty folder.
    tree->fifo(QStringLiteral("fifo"));
    file("a");
    tree->link(QStringLiteral("link"), QStringLiteral("fifo"));
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(found(), QStringList(QStringLiteral("a")));
    QCOMPARE(
        record.mid(1, 2),
        QStringList({counted(1, tree->path(QStringLiteral("link"))), counted(1, tree->root())}));
}

void tst_FileFinderEngine::unreadableFolder()
{
    // An unreadable folder counts as an empty one, and the walk goes on.
    file("a/1");
    file("b/2");
    tree->setMode(QStringLiteral("a"), 0);
    {
        const RestrictedRights rights;
        if (!rights.areRestricted()) {
            QSKIP("The super-user reads every folder here.");
        }
        // A new worker is bound as this thread is.
        rig = std::make_unique<EngineRig>();
        const QStringList record = rig->scan({tree->root()});
        QCOMPARE(found(), QStringList(QStringLiteral("b/2")));
        QCOMPARE(record.at(1), counted(0, tree->path(QStringLiteral("a"))));
    }
    tree->setMode(QStringLiteral("a"), 0755);
}

void tst_FileFinderEngine::missingFolder()
{
    // A folder that does not exist counts as an empty one.
    const QString none = tree->path(QStringLiteral("none"));
    const QStringList record = rig->scan({none, tree->root()});
    QCOMPARE(record.mid(1, 2), QStringList({counted(0, none), counted(0, tree->root())}));
}

void tst_FileFinderEngine::strangeNames()
{
    // Names with spaces, line breaks, quotes, dots and other letters are grouped like all others.
    const QStringList names = {QStringLiteral("two words"),
                               QStringLiteral("two\nlines"),
                               QStringLiteral("\"it's\""),
                               QStringLiteral("a.b.c"),
                               QStringLiteral("noextension"),
                               QStringLiteral("%1 %2"),
                               QString::fromUtf8("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80")};
    for (const QString &name : names) {
        tree->file(name, "same!");
    }
    for (const ScanProfile &profile : {ScanProfile(), EngineRig::advanced(QStringLiteral("md5"))}) {
        rig->scan({tree->root()}, profile);
        QCOMPARE(rig->groups().size(), 1);
        QCOMPARE(rig->groups().first().size(), names.size());
    }
}

void tst_FileFinderEngine::sizeOfFile()
{
    // The size is in bytes, and zero for a missing file.
    QCOMPARE(rig->engine()->sizeOfFile(file("a", "12345")), 5);
    QCOMPARE(rig->engine()->sizeOfFile(tree->path(QStringLiteral("none"))), 0);
}

void tst_FileFinderEngine::secondScan()
{
    // A second scan starts from nothing, whatever the first one left.
    file("one/a", "same!");
    file("one/b", "same!");
    file("two/c", "other");
    rig->scan({tree->path(QStringLiteral("one"))});
    QCOMPARE(rig->groups().size(), 1);
    const QString two = tree->path(QStringLiteral("two"));
    QCOMPARE(
        rig->scan({two}),
        QStringList({started, counted(1, two), finished, groupingStarted, groupingFinished(0)}));
    QCOMPARE(found(), QStringList(QStringLiteral("two/c")));
    QVERIFY(rig->engine()->foundGroups().isEmpty());
    QCOMPARE(rig->engine()->groupedFilesCount(), 0);
    const QStringList first = rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("crc")));
    QCOMPARE(rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("crc"))), first);
}

void tst_FileFinderEngine::stopInSubfolder()
{
    // A stop in a subfolder lets that one report; its parents report nothing, and each folder left
    // in the list has its own files listed and its first subfolder entered.
    file("one/a/b/1");
    file("one/a/c/2");
    file("one/d/3");
    file("two/4");
    file("two/e/5");
    file("two/f/6");
    const QString one = tree->path(QStringLiteral("one"));
    const QString two = tree->path(QStringLiteral("two"));
    // The first signal is the start, the second one the count of one/a/b.
    rig->stopAtSignal(2);
    const QStringList record = rig->scan({one, two});
    QVERIFY(rig->engine()->isStopRequested());
    QCOMPARE(record,
             QStringList({started,
                          counted(1, one + QStringLiteral("/a/b")),
                          counted(2, one + QStringLiteral("/a/c")),
                          counted(4, two + QStringLiteral("/e")),
                          finished,
                          groupingStarted,
                          groupingFinished(0)}));
    QCOMPARE(found(),
             QStringList({QStringLiteral("one/a/b/1"),
                          QStringLiteral("one/a/c/2"),
                          QStringLiteral("two/4"),
                          QStringLiteral("two/e/5")}));
}

void tst_FileFinderEngine::stopBeforeGrouping()
{
    // After a stop during the walk the grouping is entered: byte by byte it takes up one file, in
    // the Advanced mode none. The result is empty in both.
    file("a", "same!");
    file("b", "same!");
    for (const bool isAdvanced : {false, true}) {
        Model model(nullptr);
        EventLog log(&model);
        FileFinderEngine engine(&model, nullptr, nullptr);
        QSignalSpy finishedSpy(&engine, &FileFinderEngine::findDuplicatedFilesFinished);
        connect(&engine, &FileFinderEngine::findAllFilesStarted, &engine, [&engine] {
            QMetaObject::invokeMethod(&engine, "stopFinder", Qt::QueuedConnection);
        });
        Configuration::instance()->folders = QStringList(tree->root());
        Configuration::instance()->scanProfile =
            isAdvanced ? EngineRig::advanced(QStringLiteral("md5")) : ScanProfile();
        engine.startFinder();
        QStringList wanted = {QStringLiteral("5 ") + tree->path(QStringLiteral("a"))};
        if (isAdvanced) {
            wanted.clear();
        }
        wanted.append(QStringLiteral("7"));
        QCOMPARE(log.lines, wanted);
        QCOMPARE(finishedSpy.size(), 1);
        QVERIFY(finishedSpy.first().first().value<QList<QStringList>>().isEmpty());
    }
}

void tst_FileFinderEngine::stopDuringFirstPass()
{
    // A stop while the files are sorted by size ends the scan without a group.
    file("a", "same!");
    file("b", "same!");
    file("c", "same!");
    rig->stopAtSignal(4); // the start of the grouping
    QCOMPARE(
        rig->scan({tree->root()}),
        QStringList(
            {started, counted(3, tree->root()), finished, groupingStarted, groupingFinished(0)}));
    QVERIFY(rig->engine()->foundGroups().isEmpty());
}

void tst_FileFinderEngine::stopBetweenPairs()
{
    // A stop behind a pair is seen before the next one, and what was found is the result.
    QStringList files;
    for (const char *name : {"a", "b", "c", "d"}) {
        files.append(file(name, "same!"));
    }
    rig->stopAtSignal(6); // the second pair
    QCOMPARE(rig->scan({tree->root()}),
             QStringList({started,
                          counted(4, tree->root()),
                          finished,
                          groupingStarted,
                          grouped(0, 2, 10),
                          grouped(0, 3, 15),
                          groupingFinished(1)}));
    QCOMPARE(rig->groups(), QList<QStringList>{files.mid(0, 3)});
    QCOMPARE(rig->engine()->groupedFilesSize(), 15);
}

void tst_FileFinderEngine::stopBetweenPairsInMemory()
{
    // Also when no pair needs a file to be read, as all have been read for the pairs of the first.
    file("0", "other");
    QStringList files;
    for (const char *name : {"a", "b", "c", "d"}) {
        files.append(file(name, "same!"));
    }
    rig->stopAtSignal(5); // the first pair
    QCOMPARE(rig->scan({tree->root()}),
             QStringList({started,
                          counted(5, tree->root()),
                          finished,
                          groupingStarted,
                          grouped(0, 2, 10),
                          groupingFinished(1)}));
    QCOMPARE(rig->groups(), QList<QStringList>{files.mid(0, 2)});
    QCOMPARE(rig->engine()->groupedFilesSize(), 10);
}

void tst_FileFinderEngine::stopDuringAdvanced()
{
    // A stop behind a file is seen before the next one, and what was found is the result.
    const QStringList files = {file("a", "same!"), file("b", "same!"), file("c", "same!")};
    rig->stopAtSignal(6);
    const QStringList record =
        rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("sha1")));
    QCOMPARE(record.mid(4),
             QStringList({grouped(1, 0, 0), grouped(2, 2, 10), groupingFinished(1)}));
    QCOMPARE(rig->groups(), QList<QStringList>{files.mid(0, 2)});
}

void tst_FileFinderEngine::stopAtEverySignal_data()
{
    QTest::addColumn<bool>("isAdvanced");
    QTest::newRow("byte by byte") << false;
    QTest::newRow("advanced") << true;
}

void tst_FileFinderEngine::stopAtEverySignal()
{
    // Whatever the signal behind which a scan is stopped, it ends with its four fixed signals, and
    // what it did before is the beginning of the whole scan.
    QFETCH(bool, isAdvanced);
    for (const char *name : {"a/1", "a/2", "b/3", "b/4", "c/d/5", "6"}) {
        file(name, "same!");
    }
    const ScanProfile profile =
        isAdvanced ? EngineRig::advanced(QStringLiteral("md5")) : ScanProfile();
    const QStringList whole = rig->scan({tree->root()}, profile);
    for (int i = 1; i <= whole.size(); ++i) {
        rig->stopAtSignal(i);
        const QStringList record = rig->scan({tree->root()}, profile);
        QCOMPARE(record.mid(0, i - 1), whole.mid(0, i - 1));
        QCOMPARE(record.count(finished), 1);
        QCOMPARE(record.count(groupingStarted), 1);
        QVERIFY(record.last().startsWith(QLatin1String("findDuplicatedFilesFinished")));
        QVERIFY(record.size() <= whole.size());
        // The stop behind the last signal comes too late for this scan; the next forgets it.
        rig->run([] {});
        QVERIFY(rig->engine()->isStopRequested());
    }
    QCOMPARE(rig->scan({tree->root()}, profile), whole);
}

void tst_FileFinderEngine::stopByTimer_data()
{
    QTest::addColumn<QString>("checksum");
    for (const char *checksum : {"", "md5", "sha1", "crc"}) {
        QTest::newRow(*checksum == '\0' ? "byte by byte" : checksum)
            << QString::fromLatin1(checksum);
    }
}

void tst_FileFinderEngine::stopByTimer()
{
    // A stop posted by a timer from another thread ends the reading of files that takes many minutes.
    QFETCH(QString, checksum);
    for (const char *name : {"a", "b"}) {
        tree->sparseFile(QLatin1String(name), qint64(1024) * 1024 * 1024 * 1024);
    }
    Configuration::instance()->folders = QStringList(tree->root());
    Configuration::instance()->scanProfile =
        checksum.isEmpty() ? ScanProfile() : EngineRig::advanced(checksum);
    QSignalSpy groupingSpy(rig->engine(), &FileFinderEngine::findDuplicatedFilesStarted);
    QSignalSpy finishedSpy(rig->engine(), &FileFinderEngine::findDuplicatedFilesFinished);
    QTimer::singleShot(10, rig->engine(), SLOT(startFinder()));
    QTRY_COMPARE_WITH_TIMEOUT(groupingSpy.size(), 1, longWaitMilliseconds);
    QTimer::singleShot(10, rig->engine(), SLOT(stopFinder()));
    QTRY_COMPARE_WITH_TIMEOUT(finishedSpy.size(), 1, longWaitMilliseconds);
    QVERIFY(finishedSpy.first().first().value<QList<QStringList>>().isEmpty());
    bool isStopped = false;
    rig->run([&] { isStopped = rig->engine()->isStopRequested(); });
    QVERIFY(isStopped);
}

void tst_FileFinderEngine::stopIsForgotten()
{
    // A stop before the start of a scan does not touch it.
    file("a", "same!");
    file("b", "same!");
    rig->run([this] { rig->engine()->stopFinder(); });
    QVERIFY(rig->engine()->isStopRequested());
    rig->scan({tree->root()});
    QCOMPARE(rig->groups().size(), 1);
    QVERIFY(!rig->engine()->isStopRequested());
}

void tst_FileFinderEngine::startDuringScan()
{
    // A start delivered inside a scan lets that one end as if stopped, and runs after it, whole.
    file("a", "same!");
    file("b", "same!");
    const QStringList whole = rig->scan({tree->root()});
    rig->atSignal(1, [this] { rig->post("startFinder"); });
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(
        record.mid(0, 5),
        QStringList(
            {started, counted(2, tree->root()), finished, groupingStarted, groupingFinished(0)}));
    QCOMPARE(record.mid(5), whole);
    QVERIFY(!rig->engine()->isStopRequested());
}

void tst_FileFinderEngine::startDuringScanTakenBack()
{
    // A stop behind such a start takes the start back.
    file("a", "same!");
    file("b", "same!");
    rig->atSignal(1, [this] {
        rig->post("startFinder");
        rig->post("stopFinder");
    });
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(record.count(started), 1);
    QCOMPARE(record.last(), groupingFinished(0));
    QVERIFY(rig->engine()->isStopRequested());
}

void tst_FileFinderEngine::interruption()
{
    // A request to interrupt the thread ends a scan, also in the middle of a large file.
    tree->sparseFile(QStringLiteral("a"), Q_INT64_C(1) << 42);
    tree->sparseFile(QStringLiteral("b"), Q_INT64_C(1) << 42);
    const QList<ScanProfile> profiles = {ScanProfile(),
                                         EngineRig::advanced(QStringLiteral("md5")),
                                         EngineRig::advanced(QStringLiteral("crc"))};
    for (const ScanProfile &profile : profiles) {
        rig = std::make_unique<EngineRig>();
        Configuration::instance()->folders = QStringList(tree->root());
        Configuration::instance()->scanProfile = profile;
        QSignalSpy groupingSpy(rig->engine(), &FileFinderEngine::findDuplicatedFilesStarted);
        QSignalSpy finishedSpy(rig->engine(), &FileFinderEngine::findDuplicatedFilesFinished);
        rig->post("startFinder");
        QTRY_COMPARE_WITH_TIMEOUT(groupingSpy.size(), 1, longWaitMilliseconds);
        rig->worker()->requestInterruption();
        QTRY_COMPARE_WITH_TIMEOUT(finishedSpy.size(), 1, longWaitMilliseconds);
        QVERIFY(finishedSpy.first().first().value<QList<QStringList>>().isEmpty());
        bool isStopped = false;
        rig->run([&] { isStopped = rig->engine()->isStopRequested(); });
        QVERIFY(isStopped);
    }
}

void tst_FileFinderEngine::interruptionBeforeStart()
{
    // A scan that begins on an interrupted thread ends at once, with its four fixed signals.
    file("a", "same!");
    file("sub/b", "same!");
    rig->worker()->requestInterruption();
    QCOMPARE(rig->scan({tree->root()}),
             QStringList({started, finished, groupingStarted, groupingFinished(0)}));
    QVERIFY(found().isEmpty());
}

void tst_FileFinderEngine::eventsOnTheModelsThread()
{
    // On the model's own thread each file that gets a key is announced, and a stop after the scan.
    const QString a = file("a", "1");
    const QString b = file("b", "22");
    Model model(nullptr);
    EventLog log(&model);
    FileFinderEngine engine(&model, nullptr, nullptr);
    Configuration::instance()->folders = QStringList(tree->root());
    const QStringList announced = {QStringLiteral("5 ") + a, QStringLiteral("5 ") + b};
    for (const ScanProfile &profile : {ScanProfile(), EngineRig::advanced(QStringLiteral("md5"))}) {
        Configuration::instance()->scanProfile = profile;
        log.lines.clear();
        engine.startFinder();
        QCOMPARE(log.lines, announced);
    }
    connect(&engine,
            &FileFinderEngine::findDuplicatedFilesFinished,
            &engine,
            &FileFinderEngine::stopFinder);
    log.lines.clear();
    engine.startFinder();
    QCOMPARE(log.lines, announced + QStringList(QStringLiteral("7")));
}

void tst_FileFinderEngine::eventsFromAnotherThread()
{
    // Files and stops announced on the worker thread reach nobody; the other events do, in order.
    file("a", "same!");
    file("b", "same!");
    file("c", "same!");
    Model model(nullptr);
    Controller controller(&model, nullptr);
    EventLog log(&model);
    rig = std::make_unique<EngineRig>(&model, &controller);
    rig->stopAtSignal(5);
    rig->scan({tree->root()});
    QVERIFY(rig->engine()->isStopRequested());
    QStringList wanted;
    for (const int type : {2, 0, 3, 4, 1, 6}) {
        wanted.append(QString::number(type));
    }
    QTRY_COMPARE_WITH_TIMEOUT(log.lines.size(), wanted.size(), longWaitMilliseconds);
    QCOMPARE(log.lines, wanted);
}

void tst_FileFinderEngine::controllerIsConnected()
{
    // Six signals are connected to the controller, once each; the seventh to nothing.
    Model model(nullptr);
    Controller controller(&model, nullptr);
    EventLog log(&model);
    FileFinderEngine engine(&model, &controller, nullptr);
    emit engine.findAllFilesStarted();
    emit engine.findAllFilesFinished();
    emit engine.countingFilesInFolder(1, QStringLiteral("/"));
    emit engine.findDuplicatedFilesStarted();
    emit engine.findDuplicatedFilesFinished({});
    emit engine.countingFindFilesDuplicated(1, 2, 3);
    emit engine.addedDuplicatedPath(QStringLiteral("/a"));
    QStringList wanted;
    for (const int type : {2, 3, 0, 4, 6, 1}) {
        wanted.append(QString::number(type));
    }
    QCOMPARE(log.lines, wanted);
    // A second one is refused as a duplicate: the connection is the plain automatic one.
    // clang-format off
    QVERIFY(!connect(&engine, SIGNAL(findAllFilesStarted()),
                     &controller, SLOT(onFindAllFilesStarted()), Qt::UniqueConnection));
    QVERIFY(connect(&engine, SIGNAL(addedDuplicatedPath(QString)),
                    &controller, SLOT(addedDuplicatedPath(QString)), Qt::UniqueConnection));
    // clang-format on
}

void tst_FileFinderEngine::noModelAndNoController()
{
    // An engine without anybody to report to works, stops included.
    file("a", "same!");
    file("b", "same!");
    rig->stopAtSignal(5);
    QCOMPARE(rig->scan({tree->root()}).last(), groupingFinished(1));
}

TWINSIFT_TEST_MAIN(tst_FileFinderEngine)
#include "tst_FileFinderEngine.moc"
