// SPDX-License-Identifier: MIT
#include "tests/support/OpenWatch.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/results/ResultsPage.h"
#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/PictureFile.h"

#include <QBuffer>
#include <QHelpEvent>
#include <QImageIOPlugin>
#include <QImageWriter>
#include <QTableView>
#include <QtPlugin>

namespace
{
// What the readers of this program were asked to do.
int askedByContent = 0;
int decoded = 0;

class ProbeHandler final : public QImageIOHandler
{
public:
    bool canRead() const override { return true; }
    bool read(QImage *image) override
    {
        ++decoded;
        *image = QImage(8, 8, QImage::Format_RGB32);
        return true;
    }
};
} // namespace

/** A reader that takes any content for its own, as one of a system may. */
class ProbePlugin final : public QImageIOPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QImageIOHandlerFactoryInterface_iid FILE "ProbePlugin.json")

public:
    Capabilities capabilities(QIODevice *device, const QByteArray &format) const override
    {
        if (format.isEmpty() && device != nullptr) {
            ++askedByContent;
            return CanRead;
        }
        return format == "probe" ? Capabilities(CanRead) : Capabilities();
    }
    QImageIOHandler *create(QIODevice *device, const QByteArray &format) const override
    {
        auto *const handler = new ProbeHandler;
        handler->setDevice(device);
        handler->setFormat(format);
        return handler;
    }
};

/** Which readers of the system see a file that calls itself a picture. */
class tst_PictureFormats final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void readsTheListedFormats_data();
    void readsTheListedFormats();
    void readsNoOtherFormat_data();
    void readsNoOtherFormat();
    void asksNoOtherReader_data();
    void asksNoOtherReader();
    void opensNothingThatAPictureNames();
    void watchesThoseWhoAskAllReaders();
};

namespace
{
const QSize pictureSize(40, 30);

QImage picture()
{
    QImage image(pictureSize, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

QByteArray written(const QByteArray &format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, format)
        .write(format == "wbmp" || format == "xbm" ? picture().convertToFormat(QImage::Format_Mono)
                                                   : picture());
    return bytes;
}

QByteArray svgNaming(const QString &path)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
           "width=\"40\" height=\"30\"><image width=\"40\" height=\"30\" xlink:href=\""
        + path.toUtf8() + "\"/></svg>";
}

struct Sample {
    const char *name;
    /** As its reader calls it. */
    QByteArray format;
    QByteArray content;
};

// What the toolkit cannot write itself.
QVector<Sample> others()
{
    const QByteArray svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"30\">"
                           "<rect width=\"40\" height=\"30\" fill=\"red\"/></svg>";
    return {
        {"svg", "svg", svg},
        {"svg behind a declaration", "svg", "<?xml version=\"1.0\"?>\n" + svg},
        {"svgz",
         "svgz",
         QByteArray::fromBase64(
             "H4sIAAAAAAACA3XM2w2AIAxA0VWaDmAb8csAywgCCT4CjXV8dQC/78m1/Upwb3XvDrPI"
             "OROp6qBmOFqikZnpFQhagmSHEyPkWFIWh4bR2xYX+YmwllodthiQvP02/gHrku9I"
             "bgAAAA==")},
        {"openraster",
         "ora",
         QByteArray::fromBase64(
             "UEsDBBQAAAAAAAAAIQDHmvCMEAAAABAAAAAIAAAAbWltZXR5cGVpbWFnZS9vcGVucmFzdGVyUEsDBBQAAAAA"
             "AAAAIQBkdaGzSgAAAEoAAAAPAAAAbWVyZ2VkaW1hZ2UucG5niVBORw0KGgoAAAANSUhEUgAAAAgAAAAICAIA"
             "AABLbSncAAAAEUlEQVR42mP4z8CAFTEMLQkAKP8/wc53yE8AAAAASUVORK5CYIJQSwECFAMUAAAAAAAAACEA"
             "x5rwjBAAAAAQAAAACAAAAAAAAAAAAAAAgAEAAAAAbWltZXR5cGVQSwECFAMUAAAAAAAAACEAZHWhs0oAAABK"
             "AAAADwAAAAAAAAAAAAAAgAE2AAAAbWVyZ2VkaW1hZ2UucG5nUEsFBgAAAAACAAIAcwAAAK0AAAAAAA==")},
        {"pdf",
         "pdf",
         "%PDF-1.1\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
         "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
         "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 40 30]>>endobj\n"
         "trailer<</Root 1 0 R>>\n%%EOF\n"},
        {"eps", "eps", "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 40 30\nshowpage\n"},
        {"radiance", "hdr", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 1\n\x80\x80\x80\x81"},
        {"photoshop",
         "psd",
         QByteArray::fromHex("384250530001000000000000000300000001000000010008000300000000"
                             "0000000000000000" // no colour table, no resources, no layers
                             "0000ff8000")},
        {"cursor",
         "cur",
         QByteArray::fromHex("00000200010001010000000000003000000016000000"
                             "280000000100000002000000010020000000000000000000"
                             "00000000000000000000000000000000ff0000ff00000000")},
        {"mng", "mng", QByteArray::fromHex("8a4d4e470d0a1a0a0000001c4d484452000000280000001e")},
    };
}

bool isListed(const QByteArray &format)
{
    return QVector<QByteArray>({"bmp", "gif", "ico", "jpg", "jpeg", "png"}).contains(format);
}

// The writers for cursors write an icon, those for PostScript have another program write.
bool isWritten(const QByteArray &format)
{
    return format != "cur" && !format.startsWith("eps");
}
} // namespace

void tst_PictureFormats::init()
{
    TestCase::init();
    askedByContent = 0;
    decoded = 0;
}

void tst_PictureFormats::readsTheListedFormats_data()
{
    QTest::addColumn<QByteArray>("content");
    for (const char *format : {"bmp", "ico", "jpeg", "png"}) {
        QTest::newRow(format) << written(format);
    }
    QTest::newRow("gif") << QByteArray::fromHex(
        "47494638396128001e00f00000000000ff00002c0000000028001e000002218c"
        "8fa9cbed0fa39cb4da8bb3debcfb0f86e24896e689a6eacab6ee0bc7f24c7305"
        "003b");
}

void tst_PictureFormats::readsTheListedFormats()
{
    // A picture of the listed formats is read whatever its name, and by its own reader alone.
    QFETCH(QByteArray, content);
    const QString file = TempTree(path(QString())).file(QStringLiteral("x.svg"), content);
    QCOMPARE(PictureFile(file).size(), pictureSize);
    QCOMPARE(PictureFile(file).readAtHeight(32).size(), QSize(43, 32));
    QVERIFY(!PictureFile(file).read().isNull());
    QCOMPARE(askedByContent, 0);
    QCOMPARE(decoded, 0);
}

void tst_PictureFormats::readsNoOtherFormat_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("content");
    const QList<QByteArray> formats = QImageWriter::supportedImageFormats();
    for (const QByteArray &format : formats) {
        if (!isListed(format) && isWritten(format)) {
            QTest::newRow(format.constData()) << format << written(format);
        }
    }
    const QVector<Sample> samples = others();
    for (const Sample &sample : samples) {
        QTest::addRow("%s, by hand", sample.name) << sample.format << sample.content;
    }
}

void tst_PictureFormats::readsNoOtherFormat()
{
    // What a reader of the system takes for a picture, under the name of a photo, is none here.
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, content);
    if (!QImageReader::supportedImageFormats().contains(format)) {
        QSKIP("this system has no reader for the format");
    }
    const QString file = TempTree(path(QString())).file(QStringLiteral("holiday.jpg"), content);
    QImageReader reader(file, format);
    reader.setAutoDetectImageFormat(false);
    QVERIFY(reader.canRead());
    QVERIFY(!PictureFile(file).size().isValid());
    QVERIFY(PictureFile(file).read().isNull());
    QVERIFY(PictureFile(file).readAtHeight(32).isNull());
    QCOMPARE(askedByContent, 0);
    QCOMPARE(decoded, 0);
    const DuplicatedFilesTableModel model;
    QVERIFY(model.scaledPixmapToIcon(file).isNull());
    QCOMPARE(model.smallImageHtmlOrPath(file), file);
    QCOMPARE(askedByContent, 0);
}

void tst_PictureFormats::asksNoOtherReader_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a text") << QByteArray("text");
    QTest::newRow("a torn PNG") << written("png").left(30);
    QTest::newRow("a torn JPEG") << written("jpeg").left(30);
    QTest::newRow("a torn GIF") << QByteArray("GIF89a");
    QTest::newRow("a torn BMP") << QByteArray("BM");
    QTest::newRow("a torn ICO") << QByteArray("\0\0\1\0\1\0", 6);
    QTest::newRow("a JNG") << QByteArray("\x8bJNG\r\n\x1a\n and more");
    QTest::newRow("an ICO with another picture in it")
        << QByteArray::fromHex("000001000100281e00000100200040000000"
                               "16000000")
            + "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"30\"></svg>";
}

void tst_PictureFormats::asksNoOtherReader()
{
    // A picture that its own reader refuses is shown to no second one.
    QFETCH(QByteArray, content);
    allowMessages(QRegularExpression(QStringLiteral("JPEG")));
    ResultsPage results;
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("holiday.jpg"), content);
    results.page.setGeometry(0, 0, 900, 600);
    results.scanned({{file, tree.file(QStringLiteral("copy.jpg"), content)}});
    results.page.show();
    results.page.grab();
    QTableView *const view = results.table();
    const QPoint point = view->visualRect(results.rows()->index(1, 2)).center();
    QHelpEvent rest(QEvent::ToolTip, point, view->viewport()->mapToGlobal(point));
    QApplication::sendEvent(view->viewport(), &rest);
    QCOMPARE(results.rows()->smallImageHtmlOrPath(file), file);
    QCOMPARE(askedByContent, 0);
    QCOMPARE(decoded, 0);
}

void tst_PictureFormats::opensNothingThatAPictureNames()
{
    // A picture that names another file does not have that file opened: it might be a pipe.
#ifdef Q_OS_LINUX
    if (!QImageReader::supportedImageFormats().contains("svg")) {
        QSKIP("this system has no reader for SVG");
    }
    const TempTree tree(path(QString()));
    const QString named = tree.file(QStringLiteral("named.png"), written("png"));
    const QString file = tree.file(QStringLiteral("holiday.jpg"), svgNaming(named));
    const OpenWatch watch(named);
    const DuplicatedFilesTableModel model;
    model.scaledPixmapToIcon(file);
    model.smallImageHtmlOrPath(file);
    QVERIFY(!watch.wasOpened());
    QVERIFY(!TempTree::read(named).isEmpty());
    QVERIFY(watch.wasOpened());
#else
    QSKIP("openings can be watched on Linux alone");
#endif
}

Q_IMPORT_PLUGIN(ProbePlugin)

void tst_PictureFormats::watchesThoseWhoAskAllReaders()
{
    // The reader that is asked about nothing above is there, and is asked by who lets others guess.
    QVERIFY(!QImage::fromData(QByteArray("text")).isNull());
    QCOMPARE(askedByContent, 1);
    QCOMPARE(decoded, 1);
}

TWINSIFT_TEST_MAIN(tst_PictureFormats)
#include "tst_PictureFormats.moc"
