// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Volume.h"
#include "ui/filetypes/MaskFile.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <memory>

#include <dlfcn.h>

namespace
{
int synchronisations = 0;
int synchronisationError = 0;
} // namespace

// Stands before the one of the C library: a disk may turn out to be full as late as here.
extern "C" int fsync(int descriptor)
{
    ++synchronisations;
    if (synchronisationError != 0) {
        errno = synchronisationError;
        return -1;
    }
    static auto *const real = reinterpret_cast<int (*)(int)>(::dlsym(RTLD_NEXT, "fsync"));
    return real(descriptor);
}

/** Saves lists of types where there is no room for them. */
class tst_MaskFileVolumes final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void oldListStaysOnAFullDisk_data();
    void oldListStaysOnAFullDisk();
    void oldListStaysWhenItIsFullAtTheSync();
    void listIsSynchronisedOnce();
    void noDefaultOnAFullDisk();
    void noDefaultWhenItIsFullAtTheSync();

private:
    bool fill(qint64 freeBytes) const;
    QByteArray saved() const { return TempTree::read(volume->tree.path(name)); }
    QStringList names() const { return QDir(volume->tree.root()).entryList(QDir::Files); }

    const QString name = QStringLiteral("ftie.dat");
    std::unique_ptr<Volume> volume;
};

void tst_MaskFileVolumes::init()
{
    TestCase::init();
    synchronisations = 0;
    synchronisationError = 0;
    allowMessages(QRegularExpression(QStringLiteral("^write ")));
    volume = std::make_unique<Volume>(path(QStringLiteral("volume")), "size=2m");
    if (!volume->isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    QVERIFY(QDir::setCurrent(volume->tree.root()));
}

void tst_MaskFileVolumes::cleanup()
{
    QDir::setCurrent(QStringLiteral("/"));
    volume.reset();
    TestCase::cleanup();
}

// Takes all room but that much.
bool tst_MaskFileVolumes::fill(qint64 freeBytes) const
{
    QFile filler(volume->tree.path(QStringLiteral("filler")));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return false;
    }
    while (filler.write(QByteArray(4096, 'x')) == 4096) {
    }
    return filler.resize(filler.size() - freeBytes);
}

void tst_MaskFileVolumes::oldListStaysOnAFullDisk_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<qint64>("freeBytes");
    // The toolkit holds up to 16 KiB back until it closes the file.
    for (const int bytes : {100, 4096, 16384, 16385, 1024 * 1024}) {
        QTest::addRow("%d bytes on a full disk", bytes) << bytes << qint64(0);
        if (bytes > 4096) {
            QTest::addRow("%d bytes, 4 KiB are free", bytes) << bytes << qint64(4096);
        }
    }
    QTest::newRow("all but the last page") << 20000 << qint64(16384);
}

void tst_MaskFileVolumes::oldListStaysOnAFullDisk()
{
    // A list for which there is no room is not saved: the old one is whole, and nothing else is left.
    QFETCH(const int, bytes);
    QFETCH(const qint64, freeBytes);
    const QByteArray old = "Old|*.old\r\n";
    volume->tree.file(name, old);
    QVERIFY(fill(freeBytes));
    const QString entry =
        QStringLiteral("New|") + QString(bytes - 6, QLatin1Char('x')); // and a line break
    QVERIFY(!MaskFile::save({entry}));
    QCOMPARE(saved(), old);
    QCOMPARE(names(), (QStringList{QStringLiteral("filler"), name}));
    QVERIFY(QFile::remove(volume->tree.path(QStringLiteral("filler"))));
    QVERIFY(MaskFile::save({entry}));
    QCOMPARE(saved(), entry.toLatin1() + "\r\n");
}

void tst_MaskFileVolumes::oldListStaysWhenItIsFullAtTheSync()
{
    // A list that does not get onto the disk is not saved, though every byte of it was taken.
    volume->tree.file(name, "Old|*.old\r\n");
    for (const int error : {ENOSPC, EDQUOT, EIO}) {
        synchronisationError = error;
        QVERIFY(!MaskFile::save({QStringLiteral("New|*.new")}));
        QCOMPARE(saved(), QByteArray("Old|*.old\r\n"));
        QCOMPARE(names(), QStringList{name});
    }
}

void tst_MaskFileVolumes::listIsSynchronisedOnce()
{
    // A list is on the disk when it is called saved; one that is there already costs no more.
    QVERIFY(MaskFile::save({QStringLiteral("New|*.new")}));
    QCOMPARE(synchronisations, 1);
    QVERIFY(MaskFile::save({QStringLiteral("New|*.new")}));
    QCOMPARE(synchronisations, 1);
}

void tst_MaskFileVolumes::noDefaultOnAFullDisk()
{
    // A default list without room is not made, so that the next start makes it whole.
    QVERIFY(fill(0));
    expectMessage(QtDebugMsg, QStringLiteral("\"No space left on device\""));
    MaskFile::createDefault(volume->tree.path(name));
    QCOMPARE(names(), QStringList{QStringLiteral("filler")});
    QVERIFY(QFile::remove(volume->tree.path(QStringLiteral("filler"))));
    MaskFile::createDefault(volume->tree.path(name));
    QCOMPARE(saved().size(), 794);
}

void tst_MaskFileVolumes::noDefaultWhenItIsFullAtTheSync()
{
    // A default list that does not get onto the disk is not made either.
    synchronisationError = ENOSPC;
    expectMessage(QtDebugMsg, QStringLiteral("\"No space left on device\""));
    MaskFile::createDefault(volume->tree.path(name));
    QCOMPARE(names(), QStringList());
}

TWINSIFT_TEST_MAIN(tst_MaskFileVolumes)
#include "tst_MaskFileVolumes.moc"
