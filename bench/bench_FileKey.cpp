// SPDX-License-Identifier: MIT
#include "engine/FileKey.h"
#include "engine/ScanProfile.h"

#include <QTemporaryDir>
#include <QTest>

Q_DECLARE_METATYPE(ScanProfile)

/** The key of one file in each mode, by its size. */
class bench_FileKey final : public QObject
{
    Q_OBJECT

private slots:
    void key_data();
    void key();
};

namespace
{
QString keyOf(const QString &path, const ScanProfile &profile)
{
    if (!profile.advancedMatch) {
        return FileKey::ofAttributes(path, profile);
    }
    return profile.crcHash
        ? FileKey::ofCrc(path)
        : FileKey::ofHash(path,
                          profile.md5Hash ? QCryptographicHash::Md5 : QCryptographicHash::Sha1);
}
} // namespace

void bench_FileKey::key_data()
{
    QTest::addColumn<ScanProfile>("profile");
    QTest::addColumn<int>("bytes");
    ScanProfile size;
    ScanProfile allAttributes;
    allAttributes.sameFileName = true;
    allAttributes.sameFileExtension = true;
    allAttributes.sameDateOfCreation = true;
    ScanProfile md5;
    md5.advancedMatch = true;
    ScanProfile sha1 = md5;
    ScanProfile crc = md5;
    md5.md5Hash = true;
    crc.crcHash = true;
    for (const int bytes : {0, 4096, 4 * 1024 * 1024}) {
        QTest::addRow("size, %d bytes", bytes) << size << bytes;
        QTest::addRow("all attributes, %d bytes", bytes) << allAttributes << bytes;
        QTest::addRow("MD5, %d bytes", bytes) << md5 << bytes;
        QTest::addRow("SHA-1, %d bytes", bytes) << sha1 << bytes;
        QTest::addRow("CRC, %d bytes", bytes) << crc << bytes;
    }
}

void bench_FileKey::key()
{
    // The key is made, and what it costs on a warm cache.
    QFETCH(ScanProfile, profile);
    QFETCH(int, bytes);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("some file.tar.gz")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(QByteArray(bytes, 'x')), qint64(bytes));
    file.close();
    QString key;
    QBENCHMARK {
        key = keyOf(file.fileName(), profile);
    }
    QVERIFY(!key.isEmpty());
}

QTEST_GUILESS_MAIN(bench_FileKey)
#include "bench_FileKey.moc"
