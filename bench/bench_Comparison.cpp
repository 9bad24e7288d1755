// SPDX-License-Identifier: MIT
#include "engine/ContentClasses.h"
#include "engine/FileComparison.h"

#include <QTemporaryDir>
#include <QTest>

/** Two files against each other, and whole buckets of files of one size. */
class bench_Comparison final : public QObject
{
    Q_OBJECT

private slots:
    void compare_data();
    void compare();
    void bucket_data();
    void bucket();

private:
    QString write(const QString &name, const QByteArray &content) const;

    QTemporaryDir folder;
};

QString bench_Comparison::write(const QString &name, const QByteArray &content) const
{
    const QString path = folder.filePath(name);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? path
                                                                                    : QString();
}

void bench_Comparison::compare_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<bool>("equal");
    for (const int bytes : {0, 256, 4096, 65536, 16 * 1024 * 1024}) {
        QTest::addRow("%d bytes, equal", bytes) << bytes << true;
        if (bytes > 0) {
            QTest::addRow("%d bytes, other last byte", bytes) << bytes << false;
        }
    }
}

void bench_Comparison::compare()
{
    // The verdict is right, and what it costs on a warm cache.
    QFETCH(int, bytes);
    QFETCH(bool, equal);
    QByteArray content(bytes, 'x');
    const QString a = write(QStringLiteral("a"), content);
    if (!equal) {
        content[bytes - 1] = 'y';
    }
    const QString b = write(QStringLiteral("b"), content);
    QVERIFY(!a.isEmpty() && !b.isEmpty());
    auto verdict = FileComparison::Verdict::Failed;
    QBENCHMARK {
        verdict = FileComparison::compare(a, b);
    }
    QCOMPARE(verdict == FileComparison::Verdict::Equal, equal);
}

void bench_Comparison::bucket_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("contents");
    QTest::newRow("300 files, all equal") << 300 << 1;
    QTest::newRow("300 files, all different") << 300 << 300;
    QTest::newRow("300 files of 30 contents") << 300 << 30;
}

void bench_Comparison::bucket()
{
    // The files of a bucket are sorted into their classes, and what that costs.
    QFETCH(int, files);
    QFETCH(int, contents);
    QStringList paths;
    for (int i = 0; i < files; ++i) {
        paths.append(
            write(QString::number(i), QByteArray::number(i % contents).rightJustified(4096, '.')));
        QVERIFY(!paths.last().isEmpty());
    }
    int equalToOneBefore = 0;
    QBENCHMARK {
        equalToOneBefore = 0;
        ContentClasses classes(paths, [] { return true; });
        QVERIFY(classes.sort());
        int index = 0;
        for (const ContentClasses::File &file : classes.files()) {
            equalToOneBefore += file.first < index++ ? 1 : 0;
        }
    }
    QCOMPARE(equalToOneBefore, files - contents);
}

QTEST_GUILESS_MAIN(bench_Comparison)
#include "bench_Comparison.moc"
