// SPDX-License-Identifier: MIT
#include "engine/Crc32.h"
#include "tests/support/OpenWatch.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/PictureFile.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageWriter>
#include <QPixmap>

#include <fcntl.h>

namespace
{
QByteArray bigEndian(quint32 number)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.append(static_cast<char>((number >> static_cast<unsigned>(shift)) & 0xffU));
    }
    return bytes;
}

// A canvas of 16384 by 16128 pixels with one picture of 1 by 1 on it.
QByteArray hugeGif()
{
    return QByteArray::fromHex("474946383961"
                               "0040"
                               "003f"
                               "f00000"
                               "000000ffffff"
                               "2c00000000010001000002024401003b");
}

// An icon of 16 by 16 by its directory, in which a PNG of 20000 by 20000 pixels begins.
QByteArray hugeIcon()
{
    return QByteArray::fromHex("00000100"
                               "0100"
                               "10100000"
                               "0100"
                               "2000"
                               "40000000"
                               "16000000")
        + QByteArray::fromHex("89504e470d0a1a0a"
                              "0000000d"
                              "49484452")
        + bigEndian(20000) + bigEndian(20000) + QByteArray(32, '\0');
}

QImage gradient(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, qRgb(255 * x / size.width(), 255 * y / size.height(), 128));
        }
    }
    return image;
}

// Headers that announce 65,535 by 65,535 pixels, with next to nothing behind them.
QByteArray widestGif()
{
    QByteArray gif = hugeGif();
    return gif.replace(6, 4, QByteArray::fromHex("ffffffff"));
}

QByteArray pngOf(quint32 width, quint32 height, char bits = 8)
{
    QByteArray header =
        "IHDR" + bigEndian(width) + bigEndian(height) + bits + QByteArray::fromHex("02000000");
    Crc32 crc;
    crc.initInstance(1);
    crc.pushData(1, header.data(), static_cast<int>(header.size()));
    return QByteArray::fromHex("89504e470d0a1a0a0000000d") + header
        + bigEndian(crc.releaseInstance(1)) + QByteArray::fromHex("0000100049444154")
        + QByteArray(32, '\0');
}

QByteArray widestPng()
{
    return pngOf(65535, 65535);
}

QByteArray widestBitmap()
{
    return QByteArray::fromHex("424d"
                               "760000000000000036000000"
                               "28000000"
                               "ffff0000"
                               "ffff0000"
                               "01001800")
        + QByteArray(88, '\0');
}

QByteArray jpeg(const QImage &image, bool isProgressive = false)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(95);
    writer.setProgressiveScanWrite(isProgressive);
    writer.write(image);
    return bytes;
}

// Announces another size than its content has.
QByteArray jpegOf(int width, int height, bool isProgressive = false)
{
    QByteArray bytes = jpeg(gradient(QSize(16, 16)), isProgressive);
    const auto frame = bytes.indexOf(isProgressive ? "\xff\xc2" : "\xff\xc0");
    const QByteArray size = bigEndian(static_cast<quint32>(height)).right(2)
        + bigEndian(static_cast<quint32>(width)).right(2);
    return bytes.replace(frame + 5, 4, size);
}

// The last scan of the picture over and over again.
QByteArray withScans(const QByteArray &progressive, int scans)
{
    const auto last = progressive.lastIndexOf("\xff\xda");
    const QByteArray scan = progressive.mid(last, progressive.lastIndexOf("\xff\xd9") - last);
    return progressive.left(last) + scan.repeated(scans - progressive.count("\xff\xda") + 1)
        + "\xff\xd9";
}

QByteArray segment(int bytes)
{
    return "\xff\xe1" + bigEndian(static_cast<quint32>(bytes)).right(2)
        + QByteArray(bytes - 2, 'x');
}
} // namespace

class tst_PictureFile final : public TestCase
{
    Q_OBJECT

private slots:
    void readsByContent();
    void readsSmallGifsAndIcons();
    void hasNoPictureIn_data();
    void hasNoPictureIn();
    void doesNotWaitForAPipe();
    void takesNothingFromAPipe();
    void refusesWhatItMayNotRead();
    void takesAPictureUpToTheLimit_data();
    void takesAPictureUpToTheLimit();
    void decodesWholeUpToALowerLimit();
    void takesAProgressiveJpeg();
    void refusesEndlessScans_data();
    void refusesEndlessScans();
    void findsTheFrameBehindManySegments();
    void findsTheFrameBehindStrayBytes();
    void knowsASizeWithoutReadingOn();
    void refusesAnIconThatAnnouncesMoreThanItsFile();
    void looksAtTheFirstImageOfAnAnimation();
    void givesUpOnASlowFile();
    void isNullForATornPicture();
    void takesNoNameForARatio();
    void scalesAsTheToolkitDoes();
    void decodesAtReducedSize();
    void decodesALongJpegFromItsFile();
    void survivesATornJpeg();
    void enlargesASmallPicture();
    void hasNoSizeTooWideToPaint();
};

void tst_PictureFile::readsByContent()
{
    // The size and the pixels of a picture are read whatever its name ends in.
    const QImage image = gradient(QSize(70, 50));
    QVERIFY(image.save(path(QStringLiteral("picture.jp")), "PNG"));
    PictureFile file(path(QStringLiteral("picture.jp")));
    QCOMPARE(file.size(), QSize(70, 50));
    QCOMPARE(file.read().convertToFormat(QImage::Format_RGB32), image);
}

void tst_PictureFile::readsSmallGifsAndIcons()
{
    // The formats whose headers are looked at twice are pictures as any other.
    QByteArray gif = hugeGif();
    gif.replace(6, 4, QByteArray::fromHex("02000300"));
    const QString animation = TempTree(path(QString())).file(QStringLiteral("a.gif"), gif);
    QCOMPARE(PictureFile(animation).size(), QSize(2, 3));
    QCOMPARE(PictureFile(animation).read().size(), QSize(2, 3));
    for (const int side : {16, 256}) {
        const QString icon = path(QStringLiteral("a.ico"));
        QVERIFY(gradient(QSize(side, side)).save(icon, "ICO"));
        QCOMPARE(PictureFile(icon).size(), QSize(side, side));
        QCOMPARE(PictureFile(icon).read().size(), QSize(side, side));
        QCOMPARE(PictureFile(icon).readAtHeight(32).size(), QSize(32, 32));
    }
}

void tst_PictureFile::hasNoPictureIn_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("an empty file") << QByteArray();
    QTest::newRow("a text") << QByteArray("no picture at all");
    QTest::newRow("a PNG of more than 40 megapixels") << pngOf(8001, 5000);
    QTest::newRow("a deep PNG of more than 20 megapixels") << pngOf(5001, 4000, 16);
    QTest::newRow("a JPEG of more than 256 megapixels") << jpegOf(16001, 16000);
    QTest::newRow("a progressive JPEG of more than 40 megapixels") << jpegOf(8001, 5000, true);
    QTest::newRow("a PNG of 65,535 by 65,535") << widestPng();
    QTest::newRow("a BMP of 65,535 by 65,535") << widestBitmap();
    QTest::newRow("a GIF of 65,535 by 65,535") << widestGif();
    QTest::newRow("a JPEG of 65,535 by 65,535") << jpegOf(65535, 65535);
    // The decoder of JPEG itself takes no longer side.
    QTest::newRow("a JPEG of 65,500 by 65,500") << jpegOf(65500, 65500);
    QTest::newRow("a huge canvas around a small picture") << hugeGif();
    QTest::newRow("the head of such a canvas alone") << hugeGif().left(9);
    QTest::newRow("a huge picture in a small icon") << hugeIcon();
    QTest::newRow("the directory of an icon alone") << hugeIcon().left(22);
}

void tst_PictureFile::hasNoPictureIn()
{
    // What is no picture, or announces too large a one, has no size and reads as null.
    QFETCH(QByteArray, content);
    allowMessages(
        QRegularExpression(QStringLiteral("^Maximum supported image dimension is 65500")));
    const QString name = TempTree(path(QString())).file(QStringLiteral("x.png"), content);
    PictureFile file(name);
    QVERIFY(!file.size().isValid());
    QVERIFY(file.read().isNull());
    QVERIFY(PictureFile(name).readAtHeight(32).isNull());
}

void tst_PictureFile::doesNotWaitForAPipe()
{
    // A pipe, a folder and a file that is not there read as null at once.
    const TempTree tree(path(QString()));
    for (const QString &name : {tree.fifo(QStringLiteral("pipe.png")),
                                tree.folder(QStringLiteral("folder.png")),
                                tree.path(QStringLiteral("missing.png"))}) {
        PictureFile file(name);
        QVERIFY(!file.size().isValid());
        QVERIFY(file.read().isNull());
        QVERIFY(file.readAtHeight(32).isNull());
    }
}

void tst_PictureFile::takesNothingFromAPipe()
{
    // A picture that waits in a pipe is none, and stays there for whom it is meant: the pipe is not
    // even opened, which would let its writer go on.
    const QByteArray picture = pngOf(40, 30);
    const QString name = TempTree(path(QString())).fifo(QStringLiteral("pipe.png"));
    QFile pipe(name);
    const int descriptor = ::open(QFile::encodeName(name).constData(), O_RDWR | O_NONBLOCK);
    QVERIFY(pipe.open(descriptor, QIODevice::ReadWrite, QFile::AutoCloseHandle));
    QCOMPARE(pipe.write(picture), qint64(picture.size()));
    QVERIFY(pipe.flush());
    const OpenWatch watch(name);
    QVERIFY(!PictureFile(name).size().isValid());
    QVERIFY(!watch.wasOpened());
    QCOMPARE(pipe.read(picture.size()), picture);
}

void tst_PictureFile::refusesWhatItMayNotRead()
{
    // A file that may not be read is null, even if one with a further ending lies beside it.
    const TempTree tree(path(QString()));
    QVERIFY(gradient(QSize(8, 8)).save(path(QStringLiteral("a.png"))));
    QVERIFY(gradient(QSize(8, 8)).save(path(QStringLiteral("a.png.png"))));
    tree.setMode(QStringLiteral("a.png"), 0);
    const RestrictedRights rights;
    QVERIFY(!PictureFile(path(QStringLiteral("a.png"))).size().isValid());
    QCOMPARE(PictureFile(path(QStringLiteral("a.png.png"))).size(), QSize(8, 8));
}

void tst_PictureFile::takesAPictureUpToTheLimit_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QSize>("size");
    QTest::newRow("PNG") << pngOf(8000, 5000) << QSize(8000, 5000);
    QTest::newRow("deep PNG") << pngOf(5000, 4000, 16) << QSize(5000, 4000);
    QTest::newRow("JPEG") << jpegOf(16000, 16000) << QSize(16000, 16000);
    QTest::newRow("progressive JPEG") << jpegOf(8000, 5000, true) << QSize(8000, 5000);
}

void tst_PictureFile::takesAPictureUpToTheLimit()
{
    // 40 megapixels are 40,000,000 pixels; of what can be decoded at a reduced size it may be more.
    QFETCH(QByteArray, content);
    QFETCH(QSize, size);
    const QString name = TempTree(path(QString())).file(QStringLiteral("large.png"), content);
    QCOMPARE(PictureFile(name).size(), size);
}

void tst_PictureFile::decodesWholeUpToALowerLimit()
{
    // A photo beyond 128 megapixels has an icon, but is not decoded as a whole.
    allowMessages(QRegularExpression(QStringLiteral("^Corrupt JPEG data: premature end")));
    const TempTree tree(path(QString()));
    const QString name = tree.file(QStringLiteral("a.jpg"), jpegOf(16000, 8001));
    QCOMPARE(PictureFile(name).readAtHeight(32).size(), QSize(64, 32));
    QVERIFY(PictureFile(name).read().isNull());
    const QString other = tree.file(QStringLiteral("b.jpg"), jpegOf(9000, 5000));
    QCOMPARE(PictureFile(other).read().size(), QSize(9000, 5000));
}

void tst_PictureFile::takesAProgressiveJpeg()
{
    // A photo that comes in several scans is one as any other.
    const QImage image = gradient(QSize(640, 480));
    const TempTree tree(path(QString()));
    const QString name = tree.file(QStringLiteral("a.jpg"), jpeg(image, true));
    QCOMPARE(PictureFile(name).size(), image.size());
    QCOMPARE(PictureFile(name).read().size(), image.size());
    const QImage icon = PictureFile(name).readAtHeight(32);
    QCOMPARE(icon.size(), QSize(43, 32));
    QVERIFY(qAbs(icon.pixelColor(40, 16).red() - 240) < 12);
    // The scans of pictures behind its end are none of its own.
    const QByteArray content = jpeg(image, true);
    tree.file(QStringLiteral("a.jpg"), content.repeated(5));
    QCOMPARE(PictureFile(name).readAtHeight(32), icon);
}

void tst_PictureFile::refusesEndlessScans_data()
{
    QTest::addColumn<int>("scans");
    QTest::addColumn<QByteArray>("between");
    QTest::addColumn<bool>("isPicture");
    QTest::newRow("32 scans") << 32 << QByteArray() << true;
    QTest::newRow("33 scans") << 33 << QByteArray() << false;
    QTest::newRow("1000 scans") << 1000 << QByteArray() << false;
    QTest::newRow("33 scans behind an end in a comment")
        << 33 << QByteArray("\xff\xfe\x00\x06\xff\xd9\xff\xd9", 8) << false;
}

void tst_PictureFile::refusesEndlessScans()
{
    // Each scan goes through the whole picture, so a small file with many of them is none.
    QFETCH(int, scans);
    QFETCH(QByteArray, between);
    QFETCH(bool, isPicture);
    allowMessages(QRegularExpression(QStringLiteral("^(Corrupt JPEG data|Inconsistent prog)")));
    QByteArray content = withScans(jpeg(gradient(QSize(64, 64)), true), scans);
    content.insert(content.lastIndexOf("\xff\xda"), between);
    const QString name = TempTree(path(QString())).file(QStringLiteral("a.jpg"), content);
    QCOMPARE(PictureFile(name).readAtHeight(32).isNull(), !isPicture);
    QCOMPARE(PictureFile(name).read().isNull(), !isPicture);
}

void tst_PictureFile::findsTheFrameBehindManySegments()
{
    // Megabytes of what a camera notes may stand before the picture.
    const QByteArray small = jpeg(gradient(QSize(40, 30)));
    QByteArray segments;
    for (int i = 0; i < 100; ++i) {
        segments += segment(60000);
    }
    const QString name =
        TempTree(path(QString()))
            .file(QStringLiteral("a.jpg"), small.left(2) + segments + small.mid(2));
    QCOMPARE(PictureFile(name).size(), QSize(40, 30));
    QCOMPARE(PictureFile(name).readAtHeight(32).size(), QSize(43, 32));
}

void tst_PictureFile::findsTheFrameBehindStrayBytes()
{
    // What is out of place between two segments is passed over, as the decoder does.
    allowMessages(QRegularExpression(QStringLiteral("^Corrupt JPEG data: .* extraneous bytes")));
    const QByteArray small = jpeg(gradient(QSize(40, 30)));
    const QByteArray stray = QByteArray(300, 'x') + QByteArray("\xff\x00", 2) + "\xff\xff";
    const QString name = TempTree(path(QString()))
                             .file(QStringLiteral("a.jpg"), small.left(20) + stray + small.mid(20));
    QCOMPARE(PictureFile(name).size(), QSize(40, 30));
    QCOMPARE(PictureFile(name).read().size(), QSize(40, 30));
}

void tst_PictureFile::knowsASizeWithoutReadingOn()
{
    // The size of a picture with gigabytes of notes in it costs no more than that of any other.
    const TempTree tree(path(QString()));
    const QByteArray header = pngOf(40, 30).left(33) + bigEndian(0x7fffffff) + "prVt";
    const QByteArray small = jpeg(gradient(QSize(40, 30)));
    const QByteArray endless = small.left(2) + segment(65535).repeated(600) + small.mid(2);
    for (const QByteArray &content : {header, endless}) {
        const QString name = tree.file(QStringLiteral("a.png"), content);
        QVERIFY(QFile::resize(name, qint64(50) << 30));
        QElapsedTimer timer;
        timer.start();
        const QSize size = PictureFile(name).size();
        QVERIFY(timer.elapsed() < 500);
        QCOMPARE(size, content == header ? QSize(40, 30) : QSize());
        QVERIFY(PictureFile(name).read().isNull());
    }
}

void tst_PictureFile::refusesAnIconThatAnnouncesMoreThanItsFile()
{
    // The decoder would make room for gigabytes that are not there.
    const QString name = path(QStringLiteral("a.ico"));
    QVERIFY(gradient(QSize(16, 16)).save(name, "ICO"));
    QByteArray icon = TempTree::read(name);
    icon.replace(14, 4, QByteArray::fromHex("ffffff7f"));
    TempTree(path(QString())).file(QStringLiteral("a.ico"), icon);
    QVERIFY(!PictureFile(name).size().isValid());
    QVERIFY(PictureFile(name).read().isNull());
}

void tst_PictureFile::looksAtTheFirstImageOfAnAnimation()
{
    // However long an animation is, its size is that of the first image, and known at once.
    QByteArray gif = hugeGif();
    gif.replace(6, 4, QByteArray::fromHex("02000300"));
    const QString name = TempTree(path(QString())).file(QStringLiteral("a.gif"), gif);
    QVERIFY(QFile::resize(name, qint64(50) << 30));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(PictureFile(name).size(), QSize(2, 3));
    QVERIFY(timer.elapsed() < 1000);
    QCOMPARE(PictureFile(name).read().size(), QSize(2, 3));
}

void tst_PictureFile::givesUpOnASlowFile()
{
    // What can be read is read while there is time; then every read fails, and says why.
    const QString name = TempTree(path(QString())).file(QStringLiteral("a"), QByteArray(99, 'x'));
    TimedFile patient(60000);
    QVERIFY(patient.openFile(name));
    QCOMPARE(patient.readAll().size(), 99);
    QVERIFY(!patient.isLate());
    TimedFile hurried(0);
    QVERIFY(hurried.openFile(name));
    while (hurried.seek(0) && hurried.read(1).size() == 1) {
    }
    QVERIFY(hurried.isLate());
    QCOMPARE(hurried.read(1), QByteArray());
}

void tst_PictureFile::isNullForATornPicture()
{
    // A picture that ends too early has a size, but no pixels.
    const QString name = path(QStringLiteral("torn.png"));
    QVERIFY(gradient(QSize(200, 200)).save(name));
    QVERIFY(QFile::resize(name, 300));
    QCOMPARE(PictureFile(name).size(), QSize(200, 200));
    QVERIFY(PictureFile(name).read().isNull());
    QVERIFY(PictureFile(name).readAtHeight(32).isNull());
}

void tst_PictureFile::takesNoNameForARatio()
{
    // A photo whose name ends in "@2x" is as large as its pixels.
    QVERIFY(gradient(QSize(100, 100)).save(path(QStringLiteral("photo@2x.png"))));
    QCOMPARE(PictureFile(path(QStringLiteral("photo@2x.png"))).read().devicePixelRatio(), 1.0);
    const QImage icon = PictureFile(path(QStringLiteral("photo@2x.png"))).readAtHeight(32);
    QCOMPARE(icon.devicePixelRatio(), 1.0);
    QCOMPARE(icon.size(), QSize(32, 32));
}

void tst_PictureFile::scalesAsTheToolkitDoes()
{
    // The width at a height is the one that the toolkit's smooth scaling gives: that of Qt 5, which
    // rounds up, also where Qt 6 rounds, and makes no picture at all of a narrow one.
    const int fewer = QT_VERSION_MAJOR < 6 ? 0 : 1;
    for (int width = 1; width < 700; width += 13) {
        for (int height = 1; height < 700; height += 17) {
            const QImage image(width, height, QImage::Format_Mono);
            const QSize size = PictureFile::sizeAtHeight(image.size(), 32);
            const int toolkits = image.scaledToHeight(32, Qt::SmoothTransformation).width();
            QCOMPARE(size.height(), 32);
            QVERIFY(toolkits <= size.width() && size.width() <= toolkits + fewer);
        }
    }
}

void tst_PictureFile::decodesAtReducedSize()
{
    // A large photo has the size and the colours of the whole one, scaled.
    const QImage image = gradient(QSize(1600, 1200));
    QVERIFY(image.save(path(QStringLiteral("large.jpg")), "JPEG", 95));
    const QImage icon = PictureFile(path(QStringLiteral("large.jpg"))).readAtHeight(32);
    const QImage whole = image.scaledToHeight(32, Qt::SmoothTransformation);
    QCOMPARE(icon.size(), whole.size());
    for (const QPoint &point : {QPoint(1, 1), QPoint(40, 1), QPoint(1, 30), QPoint(21, 16)}) {
        const QColor seen = icon.pixelColor(point);
        const QColor wanted = whole.pixelColor(point);
        QVERIFY(qAbs(seen.red() - wanted.red()) < 8);
        QVERIFY(qAbs(seen.green() - wanted.green()) < 8);
        QVERIFY(qAbs(seen.blue() - wanted.blue()) < 8);
    }
}

void tst_PictureFile::decodesALongJpegFromItsFile()
{
    // A photo with more bytes than are taken into memory has the same icon as a short one.
    const QString name = path(QStringLiteral("long.jpg"));
    QVERIFY(gradient(QSize(1600, 1200)).save(name, "JPEG", 95));
    const QImage icon = PictureFile(name).readAtHeight(32);
    QCOMPARE(icon.size(), QSize(43, 32));
    for (const qint64 megabytes : {64, 65, 5000}) {
        QVERIFY(QFile::resize(name, megabytes * 1024 * 1024));
        QCOMPARE(PictureFile(name).readAtHeight(32), icon);
    }
}

void tst_PictureFile::survivesATornJpeg()
{
    // Of a photo that ends too early the part that is there is shown; its head alone is none.
    const QString name = path(QStringLiteral("torn.jpg"));
    QVERIFY(gradient(QSize(1600, 1200)).save(name, "JPEG", 95));
    QVERIFY(QFile::resize(name, QFileInfo(name).size() / 2));
    allowMessages(QRegularExpression(
        QStringLiteral("^(Corrupt JPEG data: premature end|JPEG datastream contains no image)")));
    const QImage icon = PictureFile(name).readAtHeight(32);
    QCOMPARE(icon.size(), QSize(43, 32));
    const QColor corner = icon.pixelColor(0, 0);
    QVERIFY(corner.red() < 16 && corner.green() < 16 && qAbs(corner.blue() - 128) < 16);
    QVERIFY(QFile::resize(name, 100));
    QVERIFY(PictureFile(name).readAtHeight(32).isNull());
}

void tst_PictureFile::enlargesASmallPicture()
{
    // A picture lower than the height grows to it.
    QVERIFY(gradient(QSize(20, 10)).save(path(QStringLiteral("small.png"))));
    const QImage icon = PictureFile(path(QStringLiteral("small.png"))).readAtHeight(32);
    QCOMPARE(icon.size(), QSize(64, 32));
}

void tst_PictureFile::hasNoSizeTooWideToPaint()
{
    // A line of pixels is not blown up to a picture that no painter can draw.
    QVERIFY(PictureFile::sizeAtHeight(QSize(1100, 1), 32).isEmpty());
    QCOMPARE(PictureFile::sizeAtHeight(QSize(1000, 1), 32), QSize(32000, 32));
    QVERIFY(PictureFile::sizeAtHeight(QSize(), 32).isEmpty());
    QVERIFY(gradient(QSize(1100, 1)).save(path(QStringLiteral("line.png"))));
    QVERIFY(PictureFile(path(QStringLiteral("line.png"))).readAtHeight(32).isNull());
}

TWINSIFT_TEST_MAIN(tst_PictureFile)
#include "tst_PictureFile.moc"
