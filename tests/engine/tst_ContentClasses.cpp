// SPDX-License-Identifier: MIT
#include "engine/ContentClasses.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QFile>
#include <QHash>
#include <QRandomGenerator>

#include <functional>
#include <memory>

class tst_ContentClasses final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void classesAreThoseOfTheBytes_data();
    void classesAreThoseOfTheBytes();
    void emptyBuckets();
    void sizesApart();
    void beginnings_data();
    void beginnings();
    void longFilesByWindows();
    void unreadableFiles_data();
    void unreadableFiles();
    void contentBehindTheEnd();
    void changedFileIsAlone_data();
    void changedFileIsAlone();
    void cutFileIsAlone();
    void endsWhereItMayNotGoOn_data();
    void endsWhereItMayNotGoOn();

private:
    QString write(int number, const QByteArray &content) const;

    std::unique_ptr<TempTree> tree;
};

namespace
{
// More than may be open at once.
constexpr int many = 150;

GoOn always()
{
    return [] {
        return true;
    };
}

// The first index of the same bytes, for each file.
QVector<int> firstOfEqual(const QStringList &paths)
{
    QHash<QByteArray, int> known;
    QVector<int> firsts;
    for (const QString &path : paths) {
        const QByteArray content = TempTree::read(path);
        if (!known.contains(content)) {
            known.insert(content, static_cast<int>(firsts.size()));
        }
        firsts.append(known.value(content));
    }
    return firsts;
}

QVector<int> firstsOf(const ContentClasses &classes)
{
    QVector<int> firsts;
    for (const ContentClasses::File &file : classes.files()) {
        firsts.append(file.first);
    }
    return firsts;
}

QVector<int> firstsOf(const QStringList &paths)
{
    ContentClasses classes(paths, always());
    return classes.sort() ? firstsOf(classes) : QVector<int>();
}
} // namespace

void tst_ContentClasses::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

QString tst_ContentClasses::write(int number, const QByteArray &content) const
{
    return tree->file(QString::number(number), content);
}

void tst_ContentClasses::classesAreThoseOfTheBytes_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("contents");
    for (const int files : {1, 3, 64, 65, many}) {
        for (const int bytes : {0, 1, 4095, 4096, 4097, 65536, 70000, 1100000}) {
            // The same number of bytes for large files as for small ones.
            if (files > 65 && bytes > 100000) {
                continue;
            }
            for (const int contents : {1, 2, 7, files}) {
                QTest::addRow("%d files of %d bytes, %d contents", files, bytes, contents)
                    << files << bytes << contents;
            }
        }
    }
}

void tst_ContentClasses::classesAreThoseOfTheBytes()
{
    // Files stand in one class exactly if all their bytes are equal, wherever they differ.
    QFETCH(int, files);
    QFETCH(int, bytes);
    QFETCH(int, contents);
    for (int place = 0; place < 3; ++place) {
        QRandomGenerator random(static_cast<quint32>(files * 31 + bytes * 7 + contents + place));
        QStringList paths;
        for (int i = 0; i < files; ++i) {
            QByteArray content(bytes, 'x');
            if (bytes > 0) {
                // At the start, at the end, or anywhere: four digits of which content it is.
                const QByteArray mark =
                    QByteArray::number(random.bounded(contents)).rightJustified(4, '0').left(bytes);
                const int room = bytes - static_cast<int>(mark.size());
                const int at = place == 0 ? 0 : place == 1 ? room : room / 3 * 2;
                content.replace(at, mark.size(), mark);
            }
            paths.append(write(i, content));
        }
        QCOMPARE(firstsOf(paths), firstOfEqual(paths));
    }
}

void tst_ContentClasses::emptyBuckets()
{
    // No file, and a single one, are sorted without a look at any other.
    QVERIFY(firstsOf(QStringList()).isEmpty());
    QCOMPARE(firstsOf(QStringList(write(0, "one"))), QVector<int>{0});
}

void tst_ContentClasses::sizesApart()
{
    // A file is not equal to a longer one that begins with it, in few files and in many.
    for (const int count : {4, many}) {
        QStringList paths;
        for (int i = 0; i < count; ++i) {
            paths.append(write(i, QByteArray(i % 2 == 0 ? 256 : 512, 'x')));
        }
        QCOMPARE(firstsOf(paths), firstOfEqual(paths));
    }
}

void tst_ContentClasses::beginnings_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("limit");
    for (const int count : {8, many}) {
        for (const int limit : {0, 256, 5120, 70144}) {
            QTest::addRow("%d files, %d bytes", count, limit) << count << limit;
        }
    }
}

void tst_ContentClasses::beginnings()
{
    // With a limit, files of any size are equal that agree so far; shorter ones are alone.
    QFETCH(int, count);
    QFETCH(int, limit);
    QStringList paths;
    QVector<int> wanted;
    for (int i = 0; i < count; ++i) {
        QByteArray content(limit + i % 3 - 1 + (limit == 0 ? 1 : 0), 'x');
        if (i % 4 == 0 && limit > 0) {
            content[limit - 2] = 'y';
        }
        paths.append(write(i, content));
    }
    QHash<QByteArray, int> known;
    for (int i = 0; i < count; ++i) {
        const QByteArray content = TempTree::read(paths.at(i));
        if (content.size() < limit) {
            wanted.append(i);
        } else if (!known.contains(content.left(limit))) {
            known.insert(content.left(limit), i);
            wanted.append(i);
        } else {
            wanted.append(known.value(content.left(limit)));
        }
    }
    ContentClasses classes(paths, always(), limit);
    QVERIFY(classes.sort());
    QCOMPARE(firstsOf(classes), wanted);
}

void tst_ContentClasses::longFilesByWindows()
{
    // More equal files than may be open at once, each longer than what is held of one of them.
    constexpr qint64 bytes = qint64(33) * 1024 * 1024;
    QStringList paths;
    QVector<int> wanted;
    for (int i = 0; i < 70; ++i) {
        paths.append(tree->sparseFile(QString::number(i), bytes));
        wanted.append(i == 69 ? i : 0);
    }
    QFile last(paths.last());
    QVERIFY(last.open(QIODevice::ReadWrite) && last.seek(bytes - 1) && last.putChar('x'));
    last.close();
    QCOMPARE(firstsOf(paths), wanted);
}

void tst_ContentClasses::unreadableFiles_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("few") << 6;
    QTest::newRow("many") << many;
}

void tst_ContentClasses::unreadableFiles()
{
    // A file that is closed to the user, has gone or is a folder is alone, with the reason.
    QFETCH(int, count);
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths.append(write(i, "same"));
    }
    const RestrictedRights rights;
    QVERIFY(QFile::remove(paths.at(1)));
    QVERIFY(QFile::remove(paths.at(3)));
    tree->folder(QStringLiteral("3"));
    if (rights.areRestricted()) {
        tree->setMode(QStringLiteral("4"), 0);
    }
    ContentClasses classes(paths, always());
    QVERIFY(classes.sort());
    const auto &files = classes.files();
    QCOMPARE(files[1].error, QStringLiteral("No such file or directory"));
    QCOMPARE(files[3].error, QStringLiteral("file to open is a directory"));
    QVector<int> wanted(count, 0);
    wanted[1] = 1;
    wanted[3] = 3;
    if (rights.areRestricted()) {
        QCOMPARE(files[4].error, QStringLiteral("Permission denied"));
        wanted[4] = 4;
    }
    QCOMPARE(firstsOf(classes), wanted);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(files[static_cast<std::size_t>(i)].isReadable, wanted.at(i) == 0);
    }
    if (!rights.areRestricted()) {
        QSKIP("The super-user reads every file here.");
    }
}

void tst_ContentClasses::contentBehindTheEnd()
{
    // A file that announces no bytes and has some is like no other, not even a second such one.
    const QString odd = QStringLiteral("/proc/self/status");
    if (!QFile::exists(odd)) {
        QSKIP("There is no file here that announces no bytes and has some.");
    }
    const QString empty = write(0, QByteArray());
    const QString other = write(1, QByteArray());
    QCOMPARE(firstsOf({empty, odd, odd, other}), (QVector<int>{0, 1, 2, 0}));
    QStringList paths = {empty, odd};
    while (paths.size() < many) {
        paths.append(empty);
    }
    QVector<int> wanted(many, 0);
    wanted[1] = 1;
    QCOMPARE(firstsOf(paths), wanted);
}

void tst_ContentClasses::changedFileIsAlone_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("changed");
    for (const int changed : {0, 3}) {
        const char *const which = changed == 0 ? "the first" : "another";
        QTest::addRow("few, short, %s", which) << 5 << 1000 << changed;
        QTest::addRow("few, long, %s", which) << 5 << 300000 << changed;
        QTest::addRow("many, short, %s", which) << 70 << 1000 << changed;
        QTest::addRow("many, long, %s", which) << 70 << 70000 << changed;
    }
}

void tst_ContentClasses::changedFileIsAlone()
{
    // Whenever a file changes, grows, shrinks or goes, it stands with files that it was like when all
    // its bytes were read, or alone; the others stand together.
    QFETCH(int, count);
    QFETCH(int, bytes);
    const QByteArray content(bytes, 'x');
    QByteArray other = content;
    other[bytes - 1] = 'y';
    QFETCH(int, changed);
    const std::vector<std::function<void()>> changes = {
        [&] { write(changed, other); },
        [&] { write(changed, content + 'x'); },
        [&] { write(changed, content.left(bytes / 2)); },
        [&] {
            QFile::remove(tree->path(QString::number(changed)));
        }};
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths.append(write(i, i == 1 ? other : content));
    }
    int moments = 1;
    for (int moment = 0; moment <= moments; ++moment) {
        const auto &change = changes[static_cast<std::size_t>(moment) % changes.size()];
        write(changed, content);
        int asked = 0;
        ContentClasses classes(paths, [&] {
            if (++asked == moment) {
                change();
            }
            return true;
        });
        QVERIFY(classes.sort());
        moments = moment == 0 ? asked : moments;
        const QVector<int> firsts = firstsOf(classes);
        // It may have been read before or after, but never half of each.
        const bool isLikeAll = firsts.at(changed) == firsts.at(2);
        const bool isLikeOther = changed == 0 ? firsts.at(1) == 0 : firsts.at(changed) == 1;
        QVERIFY2(
            isLikeAll || (isLikeOther && &change == &changes.front())
                || (firsts.at(changed) == changed && !firsts.mid(changed + 1).contains(changed)),
            qPrintable(QString::number(moment)));
        QVERIFY(!isLikeAll || classes.files()[static_cast<std::size_t>(changed)].isReadable);
        const int first = changed == 0 && !isLikeAll ? 2 : 0;
        for (int i = 0; i < count; ++i) {
            if (i != changed) {
                QCOMPARE(firsts.at(i), i == 1 ? (isLikeOther ? qMin(1, changed) : 1) : first);
            }
        }
    }
    QVERIFY(moments >= count);
}

void tst_ContentClasses::cutFileIsAlone()
{
    // A file that is cut before its last bytes were read is alone, whatever was read of it before.
    constexpr int count = 3;
    // The head of each file is read, then three blocks, in turn.
    constexpr int lastReading = count + 2 * count + 2;
    for (int moment = 0; moment <= count + 3 * count; ++moment) {
        QStringList paths;
        for (int i = 0; i < count; ++i) {
            paths.append(write(i, QByteArray(300000, 'x')));
        }
        int asked = 0;
        ContentClasses classes(paths, [&] {
            if (++asked == moment) {
                write(1, QByteArray(150000, 'x'));
            }
            return true;
        });
        QVERIFY(classes.sort());
        QVERIFY(moment > 0 || asked == count + 3 * count);
        QCOMPARE(firstsOf(classes),
                 (QVector<int>{0, moment > 0 && moment <= lastReading ? 1 : 0, 0}));
    }
}

void tst_ContentClasses::endsWhereItMayNotGoOn_data()
{
    changedFileIsAlone_data();
}

void tst_ContentClasses::endsWhereItMayNotGoOn()
{
    // It ends at once when it may not go on, wherever that is.
    QFETCH(int, count);
    QFETCH(int, bytes);
    QFETCH(int, changed);
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths.append(write(i, QByteArray(bytes, i == changed ? 'y' : 'x')));
    }
    int asked = 0;
    ContentClasses whole(paths, [&] { return ++asked > 0; });
    QVERIFY(whole.sort());
    const int questions = asked;
    QVERIFY(questions >= count);
    for (int last = 1; last <= questions; last += 1 + questions / 50) {
        asked = 0;
        ContentClasses classes(paths, [&] { return ++asked < last; });
        QVERIFY(!classes.sort());
        QCOMPARE(asked, last);
    }
}

TWINSIFT_TEST_MAIN(tst_ContentClasses)
#include "tst_ContentClasses.moc"
