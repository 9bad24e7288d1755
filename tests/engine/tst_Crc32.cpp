// SPDX-License-Identifier: MIT
#include "engine/Crc32.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QRandomGenerator>

#include <memory>

class tst_Crc32 final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void fileOfNineDigits();
    void emptyFile();
    void missingFile();
    void anythingElseThanAFile();
    void filesOfAllSizes_data();
    void filesOfAllSizes();
    void fileWithChecksumZero();
    void instanceInOnePiece();
    void instanceInManyPieces();
    void instanceOfOtherNumber();
    void restartedInstance();
    void pushWithoutStart();
    void pushOfNothing();
    void frozenInstance();

private:
    std::unique_ptr<TempTree> tree;
};

namespace
{
constexpr quint32 checkValue = 0xCBF43926;

QByteArray digits()
{
    return QByteArrayLiteral("123456789");
}

// Bit by bit, from the definition.
quint32 plainCrc(const QByteArray &data)
{
    quint32 crc = 0xFFFFFFFF;
    for (const char character : data) {
        crc ^= static_cast<quint8>(character);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xEDB88320 : crc >> 1;
        }
    }
    return ~crc;
}
} // namespace

void tst_Crc32::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

void tst_Crc32::fileOfNineDigits()
{
    // The published check value comes out.
    const QString file = tree->file(QStringLiteral("digits"), digits());
    QCOMPARE(Crc32().calculateFromFile(file), checkValue);
}

void tst_Crc32::emptyFile()
{
    // An empty file gives zero.
    QCOMPARE(Crc32().calculateFromFile(tree->file(QStringLiteral("empty"))), 0U);
}

void tst_Crc32::missingFile()
{
    // A missing file gives zero, without a word in the log.
    QCOMPARE(Crc32().calculateFromFile(tree->path(QStringLiteral("none"))), 0U);
}

void tst_Crc32::anythingElseThanAFile()
{
    // A folder and a FIFO give zero at once.
    QCOMPARE(Crc32().calculateFromFile(tree->root()), 0U);
    QCOMPARE(Crc32().calculateFromFile(tree->fifo(QStringLiteral("fifo"))), 0U);
}

void tst_Crc32::filesOfAllSizes_data()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes :
         {1,     2,     7,     8,     9,     15,    16,    17,    255,   256,    257,   15999,
          16000, 16001, 16383, 16384, 16385, 32000, 65535, 65536, 65537, 131072, 200003}) {
        QTest::newRow(QByteArray::number(bytes).constData()) << bytes;
    }
}

void tst_Crc32::filesOfAllSizes()
{
    // Files around the borders of all blocks agree with the definition; so do pushed pieces.
    QFETCH(int, bytes);
    QRandomGenerator random(static_cast<quint32>(bytes));
    QByteArray content(bytes, '\0');
    for (char &character : content) {
        character = static_cast<char>(random.bounded(256));
    }
    const QString file = tree->file(QStringLiteral("file"), content);
    QCOMPARE(Crc32().calculateFromFile(file), plainCrc(content));
    Crc32 crc;
    crc.initInstance(1);
    crc.pushData(1, content.data(), bytes);
    QCOMPARE(crc.releaseInstance(1), plainCrc(content));
}

void tst_Crc32::fileWithChecksumZero()
{
    // The mark of a dead instance has no meaning for files: four bytes can sum up to zero, and a
    // running value of zero on the way does not end the sum.
    const QByteArray zero("\x9D\x0A\xD9\x6D", 4);
    QCOMPARE(plainCrc(zero), 0U);
    QCOMPARE(Crc32().calculateFromFile(tree->file(QStringLiteral("zero"), zero)), 0U);
    const QByteArray frozen("\xFF\xFF\xFF\xFFx", 5);
    QCOMPARE(Crc32().calculateFromFile(tree->file(QStringLiteral("frozen"), frozen)),
             plainCrc(frozen));
}

void tst_Crc32::instanceInOnePiece()
{
    // An instance gives the check value once, and zero when it is released again.
    Crc32 crc;
    QByteArray data = digits();
    crc.initInstance(1);
    crc.pushData(1, data.data(), static_cast<int>(data.size()));
    QCOMPARE(crc.releaseInstance(1), checkValue);
    QCOMPARE(crc.releaseInstance(1), 0U);
}

void tst_Crc32::instanceInManyPieces()
{
    // The pieces add up, whatever their lengths.
    Crc32 crc;
    QByteArray data = digits();
    crc.initInstance(-3);
    for (int i = 0; i < data.size(); ++i) {
        crc.pushData(-3, data.data() + i, 1);
    }
    QCOMPARE(crc.releaseInstance(-3), checkValue);
}

void tst_Crc32::instanceOfOtherNumber()
{
    // Instances do not touch each other.
    Crc32 crc;
    QByteArray data = digits();
    crc.initInstance(1);
    crc.initInstance(2);
    crc.pushData(1, data.data(), static_cast<int>(data.size()));
    crc.pushData(2, data.data(), 3);
    QCOMPARE(crc.releaseInstance(2), plainCrc(data.left(3)));
    QCOMPARE(crc.releaseInstance(1), checkValue);
}

void tst_Crc32::restartedInstance()
{
    // Starting an instance again forgets what it has been given.
    Crc32 crc;
    QByteArray data = digits();
    crc.initInstance(1);
    crc.pushData(1, data.data(), 4);
    crc.initInstance(1);
    crc.pushData(1, data.data(), static_cast<int>(data.size()));
    QCOMPARE(crc.releaseInstance(1), checkValue);
}

void tst_Crc32::pushWithoutStart()
{
    // Data for an instance that does not run is dropped, and its release gives zero.
    Crc32 crc;
    QByteArray data = digits();
    crc.pushData(2, data.data(), static_cast<int>(data.size()));
    QCOMPARE(crc.releaseInstance(2), 0U);
    crc.pushData(2, data.data(), static_cast<int>(data.size()));
    QCOMPARE(crc.releaseInstance(2), 0U);
}

void tst_Crc32::pushOfNothing()
{
    // Lengths of zero and below change nothing.
    Crc32 crc;
    QByteArray data = digits();
    crc.initInstance(1);
    crc.pushData(1, data.data(), 0);
    crc.pushData(1, data.data(), static_cast<int>(data.size()));
    crc.pushData(1, data.data(), -5);
    QCOMPARE(crc.releaseInstance(1), checkValue);
}

void tst_Crc32::frozenInstance()
{
    // A running value that becomes zero freezes its instance: it takes no more and gives zero.
    Crc32 crc;
    QByteArray data("\xFF\xFF\xFF\xFF", 4);
    QCOMPARE(plainCrc(data), 0xFFFFFFFFU);
    crc.initInstance(1);
    crc.pushData(1, data.data(), static_cast<int>(data.size()));
    crc.pushData(1, data.data(), 1);
    QCOMPARE(crc.releaseInstance(1), 0U);
}

TWINSIFT_TEST_MAIN(tst_Crc32)
#include "tst_Crc32.moc"
