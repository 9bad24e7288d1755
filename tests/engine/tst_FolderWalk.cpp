// SPDX-License-Identifier: MIT
#include "engine/FolderWalk.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QThread>

#include <functional>
#include <memory>

class tst_FolderWalk final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void walkIsThatOfTheToolkit_data();
    void walkIsThatOfTheToolkit();
    void sizesAreTold();
    void systemIsNotEntered();
    void chosenSystemFolderIsWalked();
    void linksThatMultiply();
    void deepFoldersOnASmallStack();
    void endsWhenItIsLeft();

private:
    FolderWalk::Events recordingEvents();

    std::unique_ptr<TempTree> tree;
    QStringList record;
    FolderWalk::LinkEntries linkEntries;
};

namespace
{
/** Runs a function on a thread whose stack has so many bytes. */
class SmallThread final : public QThread
{
public:
    SmallThread(uint stackBytes, std::function<void()> threadFunction)
        : function(std::move(threadFunction))
    {
        setStackSize(stackBytes);
    }

protected:
    void run() override { function(); }

private:
    std::function<void()> function;
};

// The walk in its plainest form.
void walkPlainly(const QString &folder, const QStringList &canonicalsAbove, QStringList *record)
{
    const QDir dir(folder);
    const QStringList canonicals =
        canonicalsAbove + QStringList(QFileInfo(folder).canonicalFilePath());
    for (const QFileInfo &file :
         dir.entryInfoList(QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot, QDir::NoSort)) {
        record->append(file.absoluteFilePath());
    }
    for (const QFileInfo &subfolder :
         dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort)) {
        if (!subfolder.isSymLink() || !canonicals.contains(subfolder.canonicalFilePath())) {
            walkPlainly(subfolder.absoluteFilePath(), canonicals, record);
        }
    }
    record->append(QStringLiteral("done ") + folder);
}
} // namespace

void tst_FolderWalk::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    record.clear();
    linkEntries = FolderWalk::LinkEntries();
}

void tst_FolderWalk::cleanup()
{
    Background::fixThreadCount(0);
    QVERIFY(Background::waitForDone(60000));
    TestCase::cleanup();
}

FolderWalk::Events tst_FolderWalk::recordingEvents()
{
    return {[this](const QString &path, qint64) { record.append(path); },
            [this](const QString &done) { record.append(QStringLiteral("done ") + done); },
            [] { return false; },
            [] { return false; },
            [] { return true; },
            nullptr};
}

void tst_FolderWalk::walkIsThatOfTheToolkit_data()
{
    QTest::addColumn<int>("threads");
    for (const int threads : {1, 2, 16}) {
        QTest::addRow("%d threads", threads) << threads;
    }
}

void tst_FolderWalk::walkIsThatOfTheToolkit()
{
    // Files and folders come in one order, however many threads list ahead; links are followed, but
    // not back up.
    QFETCH(int, threads);
    Background::fixThreadCount(threads);
    Background::setThreadCount(threads);
    QRandomGenerator random(5);
    QStringList folders = {QString()};
    for (int i = 0; i < 120; ++i) {
        const QString parent = folders.at(random.bounded(folders.size()));
        const QString name = QStringLiteral("%1n%2").arg(parent).arg(i);
        switch (random.bounded(6)) {
        case 0:
            tree->link(name, tree->path(folders.at(random.bounded(folders.size()))));
            break;
        case 1:
        case 2:
            tree->folder(name);
            folders.append(name + QLatin1Char('/'));
            break;
        default:
            tree->file(name, QByteArray::number(i));
        }
    }
    QStringList plain;
    walkPlainly(tree->root(), {}, &plain);
    QVERIFY(plain.size() > 100);
    FolderWalk({}, {}, ScanProfile(), WalkOptions(), recordingEvents(), &linkEntries)
        .walk(tree->root());
    QCOMPARE(record, plain);
}

void tst_FolderWalk::sizesAreTold()
{
    // Each file comes with its size, and the names of the top folder are returned whatever is taken.
    tree->file(QStringLiteral("a"), QByteArray(3000, 'x'));
    tree->file(QStringLiteral("b"));
    tree->file(QStringLiteral("below/c"), QByteArray(2000, 'x'));
    ScanProfile profile;
    profile.minSizeEnabled = true;
    profile.minSizeInKbytes = 1;
    FolderWalk::Events events = recordingEvents();
    events.fileFound = [this](const QString &path, qint64 size) {
        record.append(QStringLiteral("%1 %2").arg(QFileInfo(path).fileName()).arg(size));
    };
    const QStringList names =
        FolderWalk({}, {}, profile, WalkOptions(), events, &linkEntries).walk(tree->root());
    QCOMPARE(names, QStringList({QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(record.filter(QRegularExpression(QStringLiteral("^[abc] "))),
             QStringList({QStringLiteral("a 3000"), QStringLiteral("c 2000")}));
}

void tst_FolderWalk::systemIsNotEntered()
{
    // A view of the system that lies below a folder, here by a link, is left out.
    if (FolderListing::list(QStringLiteral("/proc"), FileMasks({}), [] { return true; }).fileSystem
        != FileSystemKind::Pseudo) {
        QSKIP("There is no file system of the system itself at /proc.");
    }
    tree->file(QStringLiteral("file"));
    tree->link(QStringLiteral("system"), QStringLiteral("/proc/sys/kernel/random"));
    FolderWalk({}, {}, ScanProfile(), WalkOptions(), recordingEvents(), &linkEntries)
        .walk(tree->root());
    QCOMPARE(
        record,
        QStringList({tree->path(QStringLiteral("file")), QStringLiteral("done ") + tree->root()}));
}

void tst_FolderWalk::chosenSystemFolderIsWalked()
{
    // One that is chosen itself is walked with all below it.
    const QString chosen = QStringLiteral("/proc/sys/kernel");
    if (!QFileInfo::exists(chosen + QStringLiteral("/random/uuid"))) {
        QSKIP("There is no /proc/sys/kernel/random/uuid here.");
    }
    FolderWalk({}, {}, ScanProfile(), WalkOptions(), recordingEvents(), &linkEntries).walk(chosen);
    QVERIFY(record.contains(chosen + QStringLiteral("/random/uuid")));
    QCOMPARE(record.last(), QStringLiteral("done ") + chosen);
}

void tst_FolderWalk::linksThatMultiply()
{
    // A folder is entered through links a thousand times and no more, and the log says so once.
    constexpr int levels = 14;
    for (int level = 0; level < levels; ++level) {
        const QString next = tree->path(QStringLiteral("%1").arg(level + 1));
        tree->link(QStringLiteral("%1/a").arg(level), next);
        tree->link(QStringLiteral("%1/b").arg(level), next);
    }
    tree->file(QStringLiteral("%1/file").arg(levels));
    expectMessage(QtDebugMsg,
                  QStringLiteral("Too many links lead to the folder: %1")
                      .arg(QFileInfo(tree->path(QString::number(levels))).canonicalFilePath()));
    FolderWalk({}, {}, ScanProfile(), WalkOptions(), recordingEvents(), &linkEntries)
        .walk(tree->path(QStringLiteral("0")));
    // Two ways to the first, four to the second, and so on until the bound is reached.
    QCOMPARE(record.filter(QStringLiteral("/file")).size(), 1000);
    int ways = 0;
    for (int level = 0; level <= levels; ++level) {
        ways += qMin(1 << level, 1000);
    }
    QCOMPARE(record.filter(QStringLiteral("done ")).size(), ways);
    // Another walk of the scan enters none of those again, and says nothing.
    record.clear();
    FolderWalk({}, {}, ScanProfile(), WalkOptions(), recordingEvents(), &linkEntries)
        .walk(tree->path(QString::number(levels - 1)));
    QCOMPARE(record.filter(QStringLiteral("/file")).size(), 0);
}

void tst_FolderWalk::deepFoldersOnASmallStack()
{
    // The depth of the folders costs no stack.
    constexpr int depth = 1900;
    const QString deep = QStringLiteral("d/").repeated(depth);
    if (tree->path(deep).size() > 4000) {
        QSKIP("The path to the folder for temporary files is too long for folders so deep.");
    }
    tree->file(deep + QStringLiteral("file"));
    SmallThread thread(128 * 1024, [this] {
        FolderWalk({}, {}, ScanProfile(), WalkOptions(), recordingEvents(), &linkEntries)
            .walk(tree->root());
    });
    thread.start();
    QVERIFY(thread.wait(60000));
    QCOMPARE(record.size(), depth + 2);
    QVERIFY(record.first().endsWith(QStringLiteral("/d/file")));
}

void tst_FolderWalk::endsWhenItIsLeft()
{
    // Nothing is told any more, and no folder above is done.
    tree->file(QStringLiteral("a/1"));
    tree->file(QStringLiteral("b/2"));
    FolderWalk::Events events = recordingEvents();
    events.isLeaving = [this] {
        return record.size() >= 2;
    };
    FolderWalk({}, {}, ScanProfile(), WalkOptions(), events, &linkEntries).walk(tree->root());
    QCOMPARE(record,
             QStringList({tree->path(QStringLiteral("a/1")),
                          QStringLiteral("done ") + tree->path(QStringLiteral("a"))}));
}

TWINSIFT_TEST_MAIN(tst_FolderWalk)
#include "tst_FolderWalk.moc"
