// SPDX-License-Identifier: MIT
#include "engine/RegularFile.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDateTime>
#include <QFile>

#include <memory>

class tst_RegularFile final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void readsToTheEnd();
    void opensTheTargetOfALink();
    void missingFile();
    void otherThings();
    void unreadableFile();
    void failedRead();
    void sizes();
    void modificationTime();
    void timeOfLastChange();

private:
    std::unique_ptr<TempTree> tree;
};

void tst_RegularFile::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

void tst_RegularFile::readsToTheEnd()
{
    // Reads give what was asked for, the rest at the end, then nothing; a second open starts anew.
    const QString path =
        tree->file(QString::fromUtf8("\xC3\xA4 file"), QByteArray(1000, 'x') + "end");
    RegularFile file;
    char data[2000];
    for (int round = 0; round < 2; ++round) {
        QVERIFY(file.open(path));
        QCOMPARE(file.size(), 1003);
        QCOMPARE(file.read(data, 999), 999);
        QCOMPARE(file.read(data, 1000), 4);
        QCOMPARE(QByteArray(data, 4), QByteArrayLiteral("xend"));
        QCOMPARE(file.read(data, 10), 0);
    }
}

void tst_RegularFile::opensTheTargetOfALink()
{
    // A link to a file is the file.
    tree->file(QStringLiteral("file"), QByteArrayLiteral("abc"));
    RegularFile file;
    QVERIFY(file.open(tree->link(QStringLiteral("link"), QStringLiteral("file"))));
    QCOMPARE(file.size(), 3);
}

void tst_RegularFile::missingFile()
{
    // A missing file has the error text that the toolkit gives it.
    const QString path = tree->path(QStringLiteral("none"));
    QFile reference(path);
    QVERIFY(!reference.open(QIODevice::ReadOnly));
    RegularFile file;
    QVERIFY(!file.open(path));
    QCOMPARE(file.errorString(), reference.errorString());
    QCOMPARE(file.errorString(), QStringLiteral("No such file or directory"));
}

void tst_RegularFile::otherThings()
{
    // A FIFO is not waited for, a device not read, a folder refused as the toolkit refuses it.
    RegularFile file;
    QVERIFY(!file.open(tree->fifo(QStringLiteral("fifo"))));
    QCOMPARE(file.errorString(), QStringLiteral("not a regular file"));
    QVERIFY(!file.open(QStringLiteral("/dev/zero")));
    QCOMPARE(file.errorString(), QStringLiteral("not a regular file"));
    QFile reference(tree->root());
    QVERIFY(!reference.open(QIODevice::ReadOnly));
    QVERIFY(!file.open(tree->root()));
    QCOMPARE(file.errorString(), reference.errorString());
}

void tst_RegularFile::unreadableFile()
{
    // A file without the right to read it has the error text that the toolkit gives it.
    const QString path = tree->file(QStringLiteral("file"), QByteArrayLiteral("abc"));
    tree->setMode(QStringLiteral("file"), 0);
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The super-user reads every file here.");
    }
    RegularFile file;
    QVERIFY(!file.open(path));
    QCOMPARE(file.errorString(), QStringLiteral("Permission denied"));
    QCOMPARE(RegularFile::sizeOf(path), 3);
}

void tst_RegularFile::failedRead()
{
    // A read that fails is no end of the file. The memory of a process opens like a file, and its
    // first page cannot be read.
    RegularFile file;
    if (!file.open(QStringLiteral("/proc/self/mem"))) {
        QSKIP("This machine has no file that opens and cannot be read.");
    }
    char data[16];
    QCOMPARE(file.read(data, sizeof data), -1);
    QCOMPARE(file.errorString(), QStringLiteral("Input/output error"));
}

void tst_RegularFile::sizes()
{
    // The size is told without opening, follows links, and is zero for what does not exist.
    const QString path = tree->file(QStringLiteral("file"), QByteArrayLiteral("abc"));
    QCOMPARE(RegularFile::sizeOf(path), 3);
    QCOMPARE(RegularFile::sizeOf(tree->link(QStringLiteral("link"), QStringLiteral("file"))), 3);
    QCOMPARE(RegularFile::sizeOf(tree->path(QStringLiteral("none"))), 0);
    const qint64 bytes = Q_INT64_C(5) << 32;
    QCOMPARE(RegularFile::sizeOf(tree->sparseFile(QStringLiteral("large"), bytes)), bytes);
}

void tst_RegularFile::modificationTime()
{
    // The time of the last change of the content, in nanoseconds since 1970.
    const QString path = tree->file(QStringLiteral("file"), QByteArrayLiteral("abc"));
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(1234567890123);
    QFile changed(path);
    QVERIFY(changed.open(QIODevice::ReadWrite));
    QVERIFY(changed.setFileTime(time, QFileDevice::FileModificationTime));
    changed.close();
    RegularFile file;
    QVERIFY(file.open(path));
    QCOMPARE(file.modified(), Q_INT64_C(1234567890123000000));
}

void tst_RegularFile::timeOfLastChange()
{
    // It is told once a later change would have another one, and stays what it is when the time of
    // modification is set back.
    RegularFile file;
    QString path;
    const auto isTooSoon = [&] {
        path = tree->file(QStringLiteral("file"), "content");
        return file.open(path) && file.changed() < 0;
    };
    if (!isTooSoon() && file.changed() == 0) {
        QSKIP("this source does not tell it");
    }
    // Whatever else the machine does in between.
    QTRY_VERIFY(isTooSoon());
    const auto isToldNow = [&] {
        return file.open(path) && file.changed() > 0;
    };
    QTRY_VERIFY(isToldNow());
    const qint64 changed = file.changed();
    QFile reset(path);
    QVERIFY(reset.open(QIODevice::ReadWrite));
    QVERIFY(reset.setFileTime(QDateTime::fromMSecsSinceEpoch(1234567890123),
                              QFileDevice::FileModificationTime));
    reset.close();
    QTRY_VERIFY(isToldNow());
    QVERIFY(file.changed() > changed);
    QVERIFY(file.modified() < changed);
}

TWINSIFT_TEST_MAIN(tst_RegularFile)
#include "tst_RegularFile.moc"
