// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"
#include "engine/ScanFindings.h"
#include "tests/engine/EngineRig.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** What a scan tells of the files and folders that it could not look at. */
class tst_SkippedPaths final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void files_data();
    void files();
    void filesNobodyHadToRead();
    void folders();
    void linksToOtherThings();
    void namesThatAreNoText();

private:
    QStringList skipped(const ScanProfile &profile = ScanProfile());

    std::unique_ptr<TempTree> tree;
};

void tst_SkippedPaths::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    Configuration::instance()->keepsSkipped = true;
}

void tst_SkippedPaths::cleanup()
{
    Configuration::instance()->keepsSkipped = false;
    TestCase::cleanup();
}

// Path and reason of each, the path relative to the tree.
QStringList tst_SkippedPaths::skipped(const ScanProfile &profile)
{
    EngineRig rig;
    rig.scan({tree->root()}, profile);
    QStringList lines;
    const QByteArray root = QFile::encodeName(tree->root());
    for (const SkippedPath &each : ScanFindings::instance()->skipped) {
        lines.append(QString::fromLatin1(QByteArray(each.path).replace(root, ""))
                     + QLatin1String(": ") + each.reason);
    }
    return lines;
}

void tst_SkippedPaths::files_data()
{
    QTest::addColumn<QString>("checksum");
    for (const char *checksum : {"", "md5", "sha1", "crc"}) {
        QTest::addRow("mode %s", checksum) << QString::fromLatin1(checksum);
    }
}

void tst_SkippedPaths::files()
{
    // A file that cannot be opened is told once, with the reason, and only when that is asked for.
    QFETCH(QString, checksum);
    for (const char *name : {"a", "b", "c", "d"}) {
        tree->file(QLatin1String(name), "same!");
    }
    tree->setMode(QStringLiteral("b"), 0);
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The administrator cannot lay the rights down here and reads every file.");
    }
    allowMessages(QRegularExpression(QStringLiteral("/b cannot opened! Permission denied$")));
    const ScanProfile profile = checksum.isEmpty() ? ScanProfile() : EngineRig::advanced(checksum);
    QCOMPARE(skipped(profile), QStringList(QStringLiteral("/b: Permission denied")));
    QCOMPARE(skipped(profile), QStringList(QStringLiteral("/b: Permission denied")));
    Configuration::instance()->keepsSkipped = false;
    QCOMPARE(skipped(profile), QStringList());
}

void tst_SkippedPaths::filesNobodyHadToRead()
{
    // A file that is like no other by its size need not be read, and is not told.
    tree->file(QStringLiteral("a"), "one");
    tree->file(QStringLiteral("b"), "other");
    tree->setMode(QStringLiteral("b"), 0);
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The administrator cannot lay the rights down here and reads every file.");
    }
    QCOMPARE(skipped(), QStringList());
}

void tst_SkippedPaths::folders()
{
    // So is a folder that cannot be listed, and one that is not there.
    tree->file(QStringLiteral("locked/a"));
    tree->setMode(QStringLiteral("locked"), 0);
    {
        const RestrictedRights rights;
        if (!rights.areRestricted()) {
            QSKIP("The administrator cannot lay the rights down here and reads every folder.");
        }
        QCOMPARE(skipped(), QStringList(QStringLiteral("/locked: Permission denied")));
    }
    tree->setMode(QStringLiteral("locked"), 0700);
    QCOMPARE(skipped(), QStringList());
    tree = std::make_unique<TempTree>(path(QStringLiteral("gone")));
    QVERIFY(QDir(tree->root()).removeRecursively());
    QCOMPARE(skipped(), QStringList(QStringLiteral(": No such file or directory")));
}

void tst_SkippedPaths::linksToOtherThings()
{
    // Links to what is no folder, and to nothing, are no folders that cannot be read.
    tree->fifo(QStringLiteral("fifo"));
    tree->link(QStringLiteral("to fifo"), QStringLiteral("fifo"));
    tree->link(QStringLiteral("to nothing"), QStringLiteral("nothing"));
    tree->link(QStringLiteral("to itself"), QStringLiteral("to itself"));
    QCOMPARE(skipped(), QStringList());
}

void tst_SkippedPaths::namesThatAreNoText()
{
    // Files and folders whose names are no text are told with their bytes.
    const QByteArray root = QFile::encodeName(tree->folder(QStringLiteral("sub")));
    const QByteArray file = root + "/bad \xff";
    const QByteArray badFolder = root + "/cut \xe2\x82";
    const int descriptor = ::open(file.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        QSKIP("This file system has no such names.");
    }
    ::close(descriptor);
    QCOMPARE(::mkdir(badFolder.constData(), 0700), 0);
    QStringList lines = skipped();
    ::unlink(file.constData());
    ::rmdir(badFolder.constData());
    lines.sort();
    const QString reason = QStringLiteral(": its name is no valid UTF-8");
    QCOMPARE(lines,
             QStringList({QString::fromLatin1("/sub/bad \xff") + reason,
                          QString::fromLatin1("/sub/cut \xe2\x82") + reason}));
}

TWINSIFT_TEST_MAIN(tst_SkippedPaths)
#include "tst_SkippedPaths.moc"
