// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"
#include "engine/FileKey.h"
#include "tests/engine/EngineRig.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Toolkit.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <memory>

class tst_FileKey final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void sizeAlone();
    void attributes_data();
    void attributes();
    void nameUpToItsFirstDot();
    void attributesOfMissingFile();
    void attributesCoincide();
    void choiceOfChecksum_data();
    void choiceOfChecksum();
    void hashes_data();
    void hashes();
    void unreadableContent();
    void emptyAndUnreadableShareTheCrc();
    void checksumsWithoutAFile();
    void cutShort();

private:
    static QString key(const QString &path, const ScanProfile &profile);

    std::unique_ptr<TempTree> tree;
};

namespace
{
QString base64(const QByteArray &text)
{
    return QString::fromLatin1(text.toBase64());
}
} // namespace

void tst_FileKey::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

// Through the engine, which takes the profile from the configuration at each call.
QString tst_FileKey::key(const QString &path, const ScanProfile &profile)
{
    Configuration::instance()->scanProfile = profile;
    return FileFinderEngine(nullptr, nullptr, nullptr).fileChecksum(path);
}

void tst_FileKey::sizeAlone()
{
    // Without any attribute the key is the size: an empty file has the key of the digit 0.
    QCOMPARE(key(tree->file(QStringLiteral("a")), ScanProfile()), QStringLiteral("MA=="));
    const QString file = tree->file(QStringLiteral("b"), QByteArray(1234, 'x'));
    QCOMPARE(key(file, ScanProfile()), base64("1234"));
}

void tst_FileKey::attributes_data()
{
    QTest::addColumn<bool>("name");
    QTest::addColumn<bool>("extension");
    QTest::addColumn<bool>("date");
    for (int i = 0; i < 8; ++i) {
        QTest::addRow("%d", i) << ((i & 1) != 0) << ((i & 2) != 0) << ((i & 4) != 0);
    }
}

void tst_FileKey::attributes()
{
    // The attributes follow the size in a fixed order and without a separator.
    QFETCH(bool, name);
    QFETCH(bool, extension);
    QFETCH(bool, date);
    ScanProfile profile;
    profile.sameFileName = name;
    profile.sameFileExtension = extension;
    profile.sameDateOfCreation = date;
    const QString file = tree->file(QString::fromUtf8("ph\xC3\xB6to.tar.gz"), "12345");
    const QDateTime created = Toolkit::created(QFileInfo(file));
    QVERIFY(created.isValid());
    QByteArray wanted = "5";
    wanted += name ? "ph\xC3\xB6to" : "";
    wanted += extension ? "tar.gz" : "";
    wanted += date ? created.toString(Qt::TextDate).toLocal8Bit() : QByteArray();
    QCOMPARE(key(file, profile), base64(wanted));
}

void tst_FileKey::nameUpToItsFirstDot()
{
    // The same name, but another extension: everything behind the first dot counts.
    const QString jpg = tree->file(QStringLiteral("photo.jpg"), "abc");
    const QString archive = tree->file(QStringLiteral("photo.tar.gz"), "xyz");
    ScanProfile profile;
    profile.sameFileName = true;
    QCOMPARE(key(jpg, profile), key(archive, profile));
    profile.sameFileExtension = true;
    QVERIFY(key(jpg, profile) != key(archive, profile));
}

void tst_FileKey::attributesOfMissingFile()
{
    // A file that has vanished keeps a key, of size 0.
    ScanProfile profile;
    profile.sameFileName = true;
    QCOMPARE(key(tree->path(QStringLiteral("gone.txt")), profile), base64("0gone"));
    profile.sameDateOfCreation = true;
    QCOMPARE(key(tree->path(QStringLiteral("gone.txt")), profile), base64("0gone"));
}

void tst_FileKey::attributesCoincide()
{
    // Size 12 with the name "3a" has the key of size 123 with the name "a".
    ScanProfile profile;
    profile.sameFileName = true;
    QCOMPARE(key(tree->file(QStringLiteral("3a"), QByteArray(12, 'x')), profile),
             key(tree->file(QStringLiteral("a"), QByteArray(123, 'x')), profile));
}

void tst_FileKey::choiceOfChecksum_data()
{
    QTest::addColumn<bool>("md5");
    QTest::addColumn<bool>("sha1");
    QTest::addColumn<bool>("crc");
    QTest::addColumn<QString>("wanted");
    const QString md5 = QStringLiteral("JfnnlDI7RTiF9RgfG2JNCw==");
    const QString sha1 = QStringLiteral("98O8HYCOBHMq32eZZczDTKeuNEE=");
    const QString crc = QStringLiteral("3421780262");
    QTest::newRow("none") << false << false << false << sha1;
    QTest::newRow("SHA-1") << false << true << false << sha1;
    QTest::newRow("MD5") << true << false << false << md5;
    QTest::newRow("MD5 and SHA-1") << true << true << false << md5;
    QTest::newRow("CRC") << false << false << true << crc;
    QTest::newRow("MD5 and CRC") << true << false << true << crc;
    QTest::newRow("SHA-1 and CRC") << false << true << true << crc;
    QTest::newRow("all") << true << true << true << crc;
}

void tst_FileKey::choiceOfChecksum()
{
    // CRC goes before MD5, MD5 before SHA-1, and SHA-1 stands in for none.
    QFETCH(bool, md5);
    QFETCH(bool, sha1);
    QFETCH(bool, crc);
    QFETCH(QString, wanted);
    ScanProfile profile = EngineRig::advanced(QString());
    profile.md5Hash = md5;
    profile.sha1Hash = sha1;
    profile.crcHash = crc;
    // The attributes have no say in this mode.
    profile.sameFileName = profile.sameFileExtension = profile.sameDateOfCreation = true;
    QCOMPARE(key(tree->file(QStringLiteral("digits"), "123456789"), profile), wanted);
}

void tst_FileKey::hashes_data()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes :
         {0, 1, 255, 256, 257, 4095, 4096, 4097, 16000, 16384, 131071, 131072, 131073, 300000}) {
        QTest::newRow(QByteArray::number(bytes).constData()) << bytes;
    }
}

void tst_FileKey::hashes()
{
    // Files around the borders of the blocks have the hash of their whole content.
    QFETCH(int, bytes);
    QByteArray content(bytes, 'x');
    if (bytes > 0) {
        content[bytes - 1] = 'y';
    }
    const QString file = tree->file(QStringLiteral("file"), content);
    for (const auto algorithm : {QCryptographicHash::Md5, QCryptographicHash::Sha1}) {
        QCOMPARE(FileKey::ofHash(file, algorithm),
                 base64(QCryptographicHash::hash(content, algorithm)));
    }
}

void tst_FileKey::unreadableContent()
{
    // A file without the right to read it has a key of attributes, no hash, and the CRC 0.
    const QString file = tree->file(QStringLiteral("file"), "123456789");
    tree->setMode(QStringLiteral("file"), 0);
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The super-user reads every file here.");
    }
    QCOMPARE(key(file, ScanProfile()), base64("9"));
    QVERIFY(key(file, EngineRig::advanced(QStringLiteral("md5"))).isNull());
    QVERIFY(key(file, EngineRig::advanced(QStringLiteral("sha1"))).isNull());
    QCOMPARE(key(file, EngineRig::advanced(QStringLiteral("crc"))), QStringLiteral("0"));
}

void tst_FileKey::emptyAndUnreadableShareTheCrc()
{
    // An empty file, a missing one and one with the CRC 0 have the same key.
    const ScanProfile crc = EngineRig::advanced(QStringLiteral("crc"));
    const QString zero = QStringLiteral("0");
    QCOMPARE(key(tree->file(QStringLiteral("empty")), crc), zero);
    QCOMPARE(key(tree->path(QStringLiteral("none")), crc), zero);
    QCOMPARE(key(tree->file(QStringLiteral("zero"), QByteArray("\x9D\x0A\xD9\x6D", 4)), crc), zero);
}

void tst_FileKey::checksumsWithoutAFile()
{
    // Missing files, FIFOs and folders have no hash, and nothing is logged.
    for (const QString &place :
         {tree->path(QStringLiteral("none")), tree->fifo(QStringLiteral("fifo")), tree->root()}) {
        QVERIFY(FileKey::ofHash(place, QCryptographicHash::Md5).isNull());
    }
}

void tst_FileKey::cutShort()
{
    // A file that ends before its size does has no hash, and the CRC of an unreadable one.
    const QString file = QStringLiteral("/sys/class/net/lo/mtu");
    QFile reference(file);
    if (!reference.open(QIODevice::ReadOnly) || reference.readAll().size() >= reference.size()) {
        QSKIP("This machine has no file that ends before its size does.");
    }
    QVERIFY(FileKey::ofHash(file, QCryptographicHash::Sha1).isNull());
    QCOMPARE(FileKey::ofCrc(file), QStringLiteral("0"));
}

TWINSIFT_TEST_MAIN(tst_FileKey)
#include "tst_FileKey.moc"
