// SPDX-License-Identifier: MIT
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "engine/ScanFindings.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/results/ResultsPage.h"
#include "ui/results/DuplicatedFilesListWidget.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QSet>
#include <QTableView>
#include <QTimer>

#include <unistd.h>
#include <utime.h>

#ifdef Q_OS_LINUX
#include "tests/support/OwnMounts.h"
#endif

/** What the results page leaves where it is, of real files, and how it says so. */
class tst_LastCopyStays final : public TestCase
{
    Q_OBJECT

private slots:
    void aCopyOfEachContentStays_data();
    void aCopyOfEachContentStays();
    void noContentIsLostAfterARealScan_data();
    void noContentIsLostAfterARealScan();
    void whatWasTickedWholeGoes();
    void saysWhyEachOneStays();
    void staysWhereTheKeptFileIsNone_data();
    void staysWhereTheKeptFileIsNone();
    void staysThroughALinkToAFolder();
    void staysWhereAFolderIsMountedTwice();
    void staysWhereAnotherFileSystemShowsIt();
    void goesWhereItHasTwoNames();
    void comparesWhatAShortChecksumSays_data();
    void comparesWhatAShortChecksumSays();
    void asksAboutTheLastOfItsContent();
    void showsThatItWaits();

private:
    void expectLeft(const QStringList &paths)
    {
        for (const QString &left : paths) {
            expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + left);
        }
    }
    static QString onlyCopy(const QString &path)
    {
        return path + QStringLiteral(": the only copy left\n");
    }
    static QString sameFile(const QString &path)
    {
        return path + QStringLiteral(": the same file under another name\n");
    }
    static QStringList inTrash(const QString &trash)
    {
        return QDir(trash + QStringLiteral("/files")).entryList(QDir::Files);
    }
};

namespace
{
/** A line of the cursor that is shown each time that the view is painted. */
class CursorRecorder final : public QObject
{
public:
    explicit CursorRecorder(QWidget *widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            const QCursor *const cursor = QGuiApplication::overrideCursor();
            seen.append(cursor == nullptr ? -1 : int(cursor->shape()));
        }
        return QObject::eventFilter(watched, event);
    }
    QList<int> seen;
};
// Checksums of all files below a folder, links not followed.
QSet<QByteArray> contentsBelow(const QString &folder)
{
    QSet<QByteArray> contents;
    QDirIterator it(folder,
                    QDir::Files | QDir::NoSymLinks | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        QCryptographicHash hash(QCryptographicHash::Sha256);
        if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
            qFatal("cannot read %s", qPrintable(file.fileName()));
        }
        contents.insert(hash.result());
    }
    return contents;
}
} // namespace

void tst_LastCopyStays::aCopyOfEachContentStays_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("the copy of another file is kept")
        << QStringList({QStringLiteral("a1"), QStringLiteral("a2"), QStringLiteral("b2")})
        << QStringList(QStringLiteral("a1"));
    QTest::newRow("a copy of its own is kept")
        << QStringList({QStringLiteral("b2"), QStringLiteral("a1"), QStringLiteral("a2")})
        << QStringList();
}

void tst_LastCopyStays::aCopyOfEachContentStays()
{
    // Of a group of two contents a copy of each stays, with the ticks of the scan; its row is not
    // red, all ticks stay.
    QFETCH(QStringList, order);
    QFETCH(QStringList, left);
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList a = {tree.file(QStringLiteral("a1"), "aaaa"),
                           tree.file(QStringLiteral("a2"), "aaaa")};
    const QStringList b = {tree.file(QStringLiteral("b1"), "bbbb"),
                           tree.file(QStringLiteral("b2"), "bbbb")};
    QStringList group;
    for (const QString &name : order) {
        group.append(tree.path(name));
    }
    ResultsPage results;
    results.scanned({group}, {a, b});
    const QStringList ticked = results.tickedPaths();
    QCOMPARE(ticked.size(), 2);
    QString details;
    for (const QString &name : left) {
        expectLeft({tree.path(name)});
        details += onlyCopy(tree.path(name));
    }
    results.expectDeletion(2, QMessageBox::Yes);
    results.expectComplete(
        left.isEmpty() ? QString()
                       : QStringLiteral("1 file was left where it is.\nthe only copy left: 1"),
        details);
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(QFileInfo::exists(a.at(0)) || QFileInfo::exists(a.at(1)));
    QVERIFY(QFileInfo::exists(b.at(0)) || QFileInfo::exists(b.at(1)));
    QCOMPARE(inTrash(homeTrash()).size(), 2 - left.size());
    QCOMPARE(results.tickedPaths(), ticked);
    for (int row = 0; row < results.rows()->rowCount(); ++row) {
        const bool isRed = results.rows()->index(row, 2).data(Qt::BackgroundRole).value<QColor>()
            == QColor(QStringLiteral("#ff6961"));
        QCOMPARE(isRed, !QFileInfo::exists(results.rows()->index(row, 2).data().toString()));
    }
}

void tst_LastCopyStays::noContentIsLostAfterARealScan_data()
{
    QTest::addColumn<QString>("checksum");
    for (const char *checksum : {"", "md5", "sha1", "crc"}) {
        QTest::newRow(*checksum == '\0' ? "byte by byte" : checksum)
            << QString::fromLatin1(checksum);
    }
}

void tst_LastCopyStays::noContentIsLostAfterARealScan()
{
    // With the ticks of a scan and one "Yes" no content goes, of a tree with several contents of one
    // size, hard links, links to folders and a folder that is mounted twice. TWINSIFT_TREE names a
    // folder of which a copy is taken instead.
    QFETCH(QString, checksum);
    const TempTree tree(path(QStringLiteral("tree")));
    const QString real = qEnvironmentVariable("TWINSIFT_TREE");
    if (real.isEmpty()) {
        for (int i = 0; i < 300; ++i) {
            const QByteArray content = QByteArray::number(i % 90).rightJustified(20 + i % 5, 'x');
            tree.file(QStringLiteral("%1/%2").arg(i % 7).arg(i), content);
        }
        tree.file(QStringLiteral("alone/1"), "once");
        tree.file(QStringLiteral("crc/1"), QByteArray());
        tree.file(QStringLiteral("crc/2"), QByteArray("\x9D\x0A\xD9\x6D", 4));
        ::link(QFile::encodeName(tree.path(QStringLiteral("alone/1"))).constData(),
               QFile::encodeName(tree.path(QStringLiteral("alone/2"))).constData());
    } else {
        QCOMPARE(
            QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-rL"), real, tree.root()}),
            0);
    }
    tree.link(QStringLiteral("link"), tree.path(QStringLiteral("alone")));
    const QString mounted = tree.folder(QStringLiteral("mounted"));
#ifdef Q_OS_LINUX
    const bool isMounted = ownsMounts()
        && ::mount(QFile::encodeName(tree.path(QStringLiteral("alone"))).constData(),
                   QFile::encodeName(mounted).constData(),
                   nullptr,
                   MS_BIND,
                   nullptr)
            == 0;
    const auto unmount = qScopeGuard([&] {
        if (isMounted) {
            ::umount2(QFile::encodeName(mounted).constData(), MNT_DETACH);
        }
    });
#endif
    const QSet<QByteArray> before = contentsBelow(tree.root());

    ScanProfile profile;
    profile.advancedMatch = !checksum.isEmpty();
    profile.md5Hash = checksum == QLatin1String("md5");
    profile.crcHash = checksum == QLatin1String("crc");
    Configuration::instance()->folders = QStringList(tree.root());
    Configuration::instance()->scanProfile = profile;
    FileFinderEngine engine(nullptr, nullptr, nullptr);
    QList<QStringList> groups;
    connect(&engine,
            &FileFinderEngine::findDuplicatedFilesFinished,
            [&groups](const QList<QStringList> &found) { groups = found; });
    engine.startFinder();
    QVERIFY(!groups.isEmpty());

    allowMessages(
        QRegularExpression(QStringLiteral("^Cannot remove file: |^\\d+ contents before")));
    ResultsPage results;
    results.hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(groups));
    const auto ticked = results.tickedPaths().size();
    // Its box says what was left, which is another test's.
    QTimer closing;
    connect(&closing, &QTimer::timeout, [] {
        if (QWidget *const box = QApplication::activeModalWidget()) {
            box->close();
        }
    });
    closing.start(20);
    results.page.deleteSelectedFiles();
    closing.stop();
    const QSet<QByteArray> after = contentsBelow(tree.root());
    const auto moved = inTrash(homeTrash()).size();
    qInfo("%s",
          qPrintable(QStringLiteral("%1 contents before, %2 after; %3 ticked, %4 moved")
                         .arg(before.size())
                         .arg(after.size())
                         .arg(ticked)
                         .arg(moved)));
    QVERIFY(moved > 0);
    QVERIFY(moved > 0);
    // A volume of its own has a trash of its own, with notes.
    QVERIFY(after.contains(before));
}

void tst_LastCopyStays::whatWasTickedWholeGoes()
{
    // A group of which every row is ticked goes, all of it, and nothing more is said.
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList a = {tree.file(QStringLiteral("a1"), "a"),
                           tree.file(QStringLiteral("a2"), "a")};
    ResultsPage results;
    results.scanned({a}, {a});
    results.press(QStringLiteral("Select All"));
    results.expectDeletion(2, QMessageBox::Yes);
    results.expectComplete();
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(inTrash(homeTrash()).size(), 2);
}

void tst_LastCopyStays::saysWhyEachOneStays()
{
    // The last box counts the files that were left by their reasons, and lists them in the order of
    // the deletion; one that has gone before is not among them.
    const TempTree tree(path(QStringLiteral("tree")));
    QList<QStringList> groups;
    for (const char *name : {"alone", "gone", "grows", "link", "copy"}) {
        const QString shown = QLatin1String(name) % QStringLiteral("/file");
        groups.append({tree.file(shown, name), tree.file(shown + QStringLiteral(" kept"), name)});
    }
    tree.link(QStringLiteral("other"), tree.path(QStringLiteral("link")));
    groups[3][1] = tree.path(QStringLiteral("other/file"));
    ResultsPage results;
    results.scanned(groups, groups);
    QVERIFY(QFile::remove(groups.at(0).at(1)));
    QVERIFY(QFile::remove(groups.at(1).at(0)));
    tree.file(QStringLiteral("grows/file"), "other content");
    expectLeft({groups.at(0).at(0), groups.at(1).at(0), groups.at(2).at(0), groups.at(3).at(0)});
    results.expectDeletion(5, QMessageBox::Yes);
    results.expectComplete(QStringLiteral("3 files were left where they are.\n"
                                          "the only copy left: 1\n"
                                          "changed since the scan: 1\n"
                                          "the same file under another name: 1"),
                           onlyCopy(groups.at(0).at(0)) % groups.at(2).at(0)
                               % QStringLiteral(": changed since the scan\n")
                               % sameFile(groups.at(3).at(0)));
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(inTrash(homeTrash()), QStringList(QStringLiteral("file")));
    QVERIFY(!QFileInfo::exists(groups.at(4).at(0)));
}

void tst_LastCopyStays::staysWhereTheKeptFileIsNone_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"removed",
                             "cut short",
                             "written anew in its old size",
                             "written anew in its old size and time",
                             "a link to the ticked one",
                             "a folder",
                             "a FIFO"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void tst_LastCopyStays::staysWhereTheKeptFileIsNone()
{
    // What has become of the kept file since the scan leaves the ticked one its last copy.
    QFETCH(QString, kind);
    const TempTree tree(path(QStringLiteral("tree")));
    const QString file = tree.file(QStringLiteral("file"), "content");
    const QString kept = tree.file(QStringLiteral("kept"), "content");
    const utimbuf longAgo = {1000000, 1000000};
    QCOMPARE(::utime(QFile::encodeName(kept).constData(), &longAgo), 0);
    ResultsPage results;
    results.scanned({{file, kept}}, {{file, kept}});
    QVERIFY(QFile::remove(kept));
    if (kind == QStringLiteral("cut short")) {
        tree.file(QStringLiteral("kept"), "con");
        QCOMPARE(::utime(QFile::encodeName(kept).constData(), &longAgo), 0);
    } else if (kind == QStringLiteral("written anew in its old size")) {
        tree.file(QStringLiteral("kept"), "CONTENT");
    } else if (kind == QStringLiteral("written anew in its old size and time")) {
        tree.file(QStringLiteral("kept"), "CONTENT");
        QCOMPARE(::utime(QFile::encodeName(kept).constData(), &longAgo), 0);
    } else if (kind == QStringLiteral("a link to the ticked one")) {
        tree.link(QStringLiteral("kept"), file);
    } else if (kind == QStringLiteral("a folder")) {
        tree.folder(QStringLiteral("kept"));
    } else if (kind == QStringLiteral("a FIFO")) {
        tree.fifo(QStringLiteral("kept"));
    }
    expectLeft({file});
    results.expectDeletion(1, QMessageBox::Yes);
    results.expectComplete(QStringLiteral("1 file was left where it is.\nthe only copy left: 1"),
                           onlyCopy(file));
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(file), QByteArray("content"));
}

void tst_LastCopyStays::staysThroughALinkToAFolder()
{
    // Files that are only shown twice, directly and through a link, are all still there.
    const TempTree tree(path(QStringLiteral("tree")));
    tree.link(QStringLiteral("link"), tree.folder(QStringLiteral("photos")));
    QList<QStringList> groups;
    QString details;
    for (int i = 0; i < 40; ++i) {
        const QString name = QStringLiteral("/%1.jpg").arg(i);
        const QString file = tree.file(QStringLiteral("photos") + name, QByteArray::number(i));
        groups.append({file, tree.path(QStringLiteral("link") + name)});
        expectLeft({file});
        details += sameFile(file);
    }
    ResultsPage results;
    results.scanned(groups, groups);
    results.expectDeletion(40, QMessageBox::Yes);
    results.expectComplete(
        QStringLiteral("40 files were left where they are.\nthe same file under another name: 40"),
        details);
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(QDir(tree.path(QStringLiteral("photos"))).entryList(QDir::Files).size(), 40);
}

void tst_LastCopyStays::staysWhereAFolderIsMountedTwice()
{
    // A file whose folder is mounted a second time stays, also when it has two names.
#ifdef Q_OS_LINUX
    const TempTree tree(path(QStringLiteral("tree")));
    const QString real = tree.folder(QStringLiteral("folder"));
    const QString mount = tree.folder(QStringLiteral("mount"));
    const QString one = tree.file(QStringLiteral("folder/one"), "one");
    const QString two = tree.file(QStringLiteral("folder/two"), "two");
    QVERIFY(QFile::exists(two));
    QCOMPARE(::link(QFile::encodeName(two).constData(),
                    QFile::encodeName(tree.path(QStringLiteral("second name"))).constData()),
             0);
    const QByteArray place = QFile::encodeName(mount);
    if (!ownsMounts()
        || ::mount(QFile::encodeName(real).constData(),
                   place.constData(),
                   nullptr,
                   MS_BIND,
                   nullptr)
            != 0) {
        QSKIP("only the super-user can mount a folder twice");
    }
    const auto unmount = qScopeGuard([&] { ::umount2(place.constData(), MNT_DETACH); });
    const QList<QStringList> groups = {{one, mount + QStringLiteral("/one")},
                                       {two, mount + QStringLiteral("/two")}};
    ResultsPage results;
    results.scanned(groups, groups);
    expectLeft({one, two});
    results.expectDeletion(2, QMessageBox::Yes);
    results.expectComplete(
        QStringLiteral("2 files were left where they are.\nthe same file under another name: 2"),
        sameFile(one) + sameFile(two));
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(one), QByteArray("one"));
    QCOMPARE(TempTree::read(two), QByteArray("two"));
#else
    QSKIP("folders are mounted twice on Linux alone");
#endif
}

void tst_LastCopyStays::staysWhereAnotherFileSystemShowsIt()
{
    // A file that is also seen through a file system of layers stays, whichever of the two is ticked.
#ifdef Q_OS_LINUX
    const TempTree tree(path(QStringLiteral("tree")));
    const QString low = tree.file(QStringLiteral("low/a"), "low");
    const QString up = tree.file(QStringLiteral("up/b"), "up");
    tree.folder(QStringLiteral("work"));
    const QString merged = tree.folder(QStringLiteral("merged"));
    const QByteArray place = QFile::encodeName(merged);
    const QByteArray options = "lowerdir=" + QFile::encodeName(tree.path(QStringLiteral("low")))
        + ",upperdir=" + QFile::encodeName(tree.path(QStringLiteral("up")))
        + ",workdir=" + QFile::encodeName(tree.path(QStringLiteral("work")));
    if (!ownsMounts()
        || ::mount("overlay", place.constData(), "overlay", 0, options.constData()) != 0) {
        QSKIP("only the super-user can mount layers, and only where the system has them");
    }
    const auto unmount = qScopeGuard([&] { ::umount2(place.constData(), MNT_DETACH); });
    const QList<QStringList> groups = {{low, merged + QStringLiteral("/a")},
                                       {merged + QStringLiteral("/b"), up}};
    ResultsPage results;
    results.scanned(groups, groups);
    const QStringList ticked = {groups.at(0).at(0), groups.at(1).at(0)};
    QCOMPARE(results.tickedPaths(), ticked);
    expectLeft(ticked);
    results.expectDeletion(2, QMessageBox::Yes);
    results.expectComplete(
        QStringLiteral("2 files were left where they are.\nthe same file under another name: 2"),
        sameFile(ticked.at(0)) + sameFile(ticked.at(1)));
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(low), QByteArray("low"));
    QCOMPARE(TempTree::read(up), QByteArray("up"));
#else
    QSKIP("files are seen through layers on Linux alone");
#endif
}

void tst_LastCopyStays::goesWhereItHasTwoNames()
{
    // Of two names of one file one goes, as the other one keeps the content.
    const TempTree tree(path(QStringLiteral("tree")));
    const QString file = tree.file(QStringLiteral("file"), "content");
    const QString name = tree.path(QStringLiteral("name"));
    QCOMPARE(::link(QFile::encodeName(file).constData(), QFile::encodeName(name).constData()), 0);
    ResultsPage results;
    results.scanned({{file, name}}, {{file, name}});
    results.expectDeletion(1, QMessageBox::Yes);
    results.expectComplete();
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!QFileInfo::exists(file));
    QCOMPARE(TempTree::read(name), QByteArray("content"));
}

void tst_LastCopyStays::comparesWhatAShortChecksumSays_data()
{
    QTest::addColumn<QByteArray>("kept");
    QTest::addColumn<bool>("stays");
    QTest::newRow("the same bytes") << QByteArray(300000, 'x') << false;
    QTest::newRow("the last byte differs") << QByteArray(299999, 'x') + 'y' << true;
    QTest::newRow("the first byte differs") << 'y' + QByteArray(299999, 'x') << true;
}

void tst_LastCopyStays::comparesWhatAShortChecksumSays()
{
    // Where a checksum of 32 bits was all that spoke for a copy, its bytes are compared first.
    QFETCH(QByteArray, kept);
    QFETCH(bool, stays);
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList group = {tree.file(QStringLiteral("file"), QByteArray(300000, 'x')),
                               tree.file(QStringLiteral("kept"), kept)};
    ScanFindings *const findings = ScanFindings::instance();
    ResultsPage results;
    results.scanned({group}, {group});
    findings->areContentsProven = false;
    results.hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(findings->groups));
    if (stays) {
        expectLeft({group.first()});
    }
    results.expectDeletion(1, QMessageBox::Yes);
    results.expectComplete(
        stays ? QStringLiteral("1 file was left where it is.\nthe only copy left: 1") : QString(),
        stays ? onlyCopy(group.first()) : QString());
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(QFileInfo::exists(group.first()), stays);
}

void tst_LastCopyStays::asksAboutTheLastOfItsContent()
{
    // The question about one file says so when no other one has its content any more.
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList group = {tree.file(QStringLiteral("file"), "content"),
                               tree.file(QStringLiteral("kept"), "content")};
    ResultsPage results;
    results.scanned({group}, {group});
    const auto removeRow = [&](int row, const QString &more) {
        const QString file = results.rows()->index(row, 2).data().toString();
        results.clickCell(row, 2);
        results.expectBox(QMessageBox::Question,
                          QStringLiteral("Delete Duplicated Files"),
                          QStringLiteral("Start deleting %1 file. Are you sure?").arg(file),
                          QMessageBox::Yes,
                          Qt::PlainText,
                          more);
        results.choose(QStringLiteral("Delete Current File"));
        QCOMPARE(results.boxes.failures(), QStringList());
        QVERIFY(!QFileInfo::exists(file));
    };
    removeRow(0, QString());
    removeRow(1, QStringLiteral("No other copy of this file is left among those found."));
}

void tst_LastCopyStays::showsThatItWaits()
{
    // The pointer is a wait cursor while files move, and no longer when the last box comes.
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList group = {tree.file(QStringLiteral("a"), "content"),
                               tree.path(QStringLiteral("gone")),
                               tree.file(QStringLiteral("b"), "content")};
    ResultsPage results;
    results.scanned({group}, {group});
    QVERIFY(QTest::qWaitForWindowExposed(&results.window));
    const CursorRecorder recorder(results.table()->viewport());
    expectLeft({group.at(1)});
    results.boxes.expect(
        QStringLiteral("Complete!"),
        [](QWidget *) {
            return QGuiApplication::overrideCursor() == nullptr ? QString()
                                                                : QStringLiteral("still waits");
        },
        [](QWidget *box) { box->close(); });
    results.page.deleteSelectedFiles();
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!recorder.seen.isEmpty());
    QCOMPARE(recorder.seen.first(), int(Qt::WaitCursor));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

TWINSIFT_TEST_MAIN(tst_LastCopyStays)
#include "tst_LastCopyStays.moc"
