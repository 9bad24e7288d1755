// SPDX-License-Identifier: MIT
#include "tests/faults/FaultTree.h"
#include "tests/faults/Scan.h"
#include "tests/faults/ScanProcess.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QFile>

/** Runs twinsift-scan on file systems that fail or answer slowly. */
class tst_FaultyScan final : public TestCase
{
    Q_OBJECT

private slots:
    void faultIsNoEndOfTheProgram_data();
    void faultIsNoEndOfTheProgram();
    void stopIsSeenWhileFilesOpenSlowly();

private:
    QProcessEnvironment shim(const QString &kind, int n, const QString &fault, int delay) const;
    ScanProcess scan(const QStringList &mode, const QProcessEnvironment &variables) const;

    std::unique_ptr<FaultTree> tree;
};

namespace
{
QList<QStringList> decoded(const QList<QByteArrayList> &groups)
{
    QList<QStringList> texts;
    for (const QByteArrayList &group : groups) {
        QStringList paths;
        for (const QByteArray &path : group) {
            paths.append(QFile::decodeName(path));
        }
        texts.append(paths);
    }
    return texts;
}
} // namespace

QProcessEnvironment tst_FaultyScan::shim(const QString &kind,
                                         int n,
                                         const QString &fault,
                                         int delay) const
{
    QProcessEnvironment variables;
    variables.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAULT_SHIM));
    // The runtime of the address sanitizer wants to be loaded before any other library.
    variables.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    variables.insert(QStringLiteral("FAULT_SHIM_FOLDER"), tree->root());
    variables.insert(QStringLiteral("FAULT_SHIM_KIND"), kind);
    variables.insert(QStringLiteral("FAULT_SHIM_N"), QString::number(n));
    variables.insert(QStringLiteral("FAULT_SHIM_FAULT"), fault);
    variables.insert(QStringLiteral("FAULT_SHIM_DELAY"), QString::number(delay));
    variables.insert(QStringLiteral("FAULT_SHIM_REPORT"), path(QStringLiteral("report")));
    return variables;
}

ScanProcess tst_FaultyScan::scan(const QStringList &mode,
                                 const QProcessEnvironment &variables) const
{
    return ScanProcess(mode + QStringList{tree->root()}, variables);
}

void tst_FaultyScan::faultIsNoEndOfTheProgram_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("fault");
    const QStringList kinds = {QStringLiteral("open"),
                               QStringLiteral("read"),
                               QStringLiteral("stat"),
                               QStringLiteral("list")};
    const QStringList faults = {QStringLiteral("EIO"),
                                QStringLiteral("ENOENT"),
                                QStringLiteral("EACCES"),
                                QStringLiteral("ELOOP"),
                                QStringLiteral("EMFILE"),
                                QStringLiteral("end")};
    int next = 0;
    for (const QString &mode : {QString(), QStringLiteral("md5"), QStringLiteral("crc")}) {
        for (const QString &kind : kinds) {
            // Only data ends.
            const bool ends = kind == QStringLiteral("read") || kind == QStringLiteral("list");
            const QString &fault = faults.at(next++ % (ends ? 6 : 5));
            QTest::addRow("%s, %s, %s",
                          mode.isEmpty() ? "byte by byte" : qPrintable(mode),
                          qPrintable(kind),
                          qPrintable(fault))
                << mode << kind << fault;
        }
    }
}

void tst_FaultyScan::faultIsNoEndOfTheProgram()
{
    // The program ends with status 0, or with 1 when it names what it could not read; it prints only
    // files that are equal, and names only what is in the tree.
    QFETCH(QString, mode);
    QFETCH(QString, kind);
    QFETCH(QString, fault);
    tree = std::make_unique<FaultTree>(path(QStringLiteral("tree")));
    const QStringList before = FaultTree::snapshot(tree->root());
    const QStringList options =
        mode.isEmpty() ? QStringList() : QStringList{QStringLiteral("--advanced"), mode};
    const QRegularExpression complaint(QStringLiteral("^twinsift-scan: %1(/\\S+)?: .+$")
                                           .arg(QRegularExpression::escape(tree->root())));
    // The first call may ask whether the argument is a folder, which has an answer of its own.
    for (const int n : {2, 7, 60, 150}) {
        QFile::remove(path(QStringLiteral("report")));
        const ScanProcess process = scan(options, shim(kind, n, fault, 0));
        QCOMPARE(process.status, process.messages.isEmpty() ? 0 : 1);
        for (const QByteArray &line : process.messages) {
            QVERIFY2(complaint.match(QString::fromUtf8(line)).hasMatch(), line.constData());
        }
        const QString spoiled =
            QString::fromUtf8(TempTree::read(path(QStringLiteral("report")))).trimmed();
        QVERIFY2(spoiled.startsWith(tree->root()), qPrintable(spoiled));
        for (const QStringList &group : decoded(process.groups)) {
            QVERIFY2(tree->areEqual(group), qPrintable(group.join(QLatin1Char(' '))));
        }
    }
    QCOMPARE(FaultTree::snapshot(tree->root()), before);
}

void tst_FaultyScan::stopIsSeenWhileFilesOpenSlowly()
{
    // A scan that is stopped while each file takes long to open prints what it has found so far.
    tree = std::make_unique<FaultTree>(path(QStringLiteral("tree")));
    // The 11 folders and the phases give 14 signals, then each file gives one.
    const ScanProcess process = scan({QStringLiteral("--advanced"),
                                      QStringLiteral("md5"),
                                      QStringLiteral("--events"),
                                      QStringLiteral("--stop-after"),
                                      QStringLiteral("40")},
                                     shim(QStringLiteral("open"), 0, QString(), 50));
    QCOMPARE(process.status, 0);
    int keyed = 0;
    for (const QByteArray &line : process.messages) {
        keyed += line.startsWith("countingFindFilesDuplicated\t") ? 1 : 0;
    }
    QVERIFY2(keyed >= 10 && keyed <= 40, qPrintable(QString::number(keyed)));
    for (const QStringList &group : decoded(process.groups)) {
        QVERIFY2(tree->areEqual(group), qPrintable(group.join(QLatin1Char(' '))));
    }
    QVERIFY(process.groups.size() < tree->groups().size());
}

TWINSIFT_TEST_MAIN(tst_FaultyScan)
#include "tst_FaultyScan.moc"
