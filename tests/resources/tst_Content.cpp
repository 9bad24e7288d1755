// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QXmlStreamReader>

namespace
{
QString inResources(const QString &name)
{
    return QStringLiteral(TWINSIFT_RESOURCES_DIR "/") + name;
}

QStringList filesIn(const QString &folder, const QString &mask)
{
    return QDir(folder).entryList({mask}, QDir::Files, QDir::Name);
}
} // namespace

class tst_Content final : public TestCase
{
    Q_OBJECT

private slots:
    void listNamesEveryFile();
    void everyPictureHasItsDrawing();
    void size_data();
    void size();
    void pictureIsBlueOnTransparentGround_data();
    void pictureIsBlueOnTransparentGround();
    void doubledLogoIsTwiceTheSize();
};

void tst_Content::listNamesEveryFile()
{
    // The list, the files beside it and what is compiled in are the same names.
    QFile file(inResources(QStringLiteral("content.qrc")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList listed;
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && reader.name() == QLatin1String("file")) {
            const QString alias = reader.attributes().value(QLatin1String("alias")).toString();
            QCOMPARE(reader.readElementText(), QStringLiteral("content/") + alias);
            listed.append(alias);
        }
    }
    QVERIFY(!reader.hasError());
    listed.sort();
    QVERIFY(listed.size() > 1);
    QCOMPARE(filesIn(inResources(QStringLiteral("content")), QStringLiteral("*")), listed);
    QCOMPARE(filesIn(QStringLiteral(":/content"), QStringLiteral("*")), listed);
}

void tst_Content::everyPictureHasItsDrawing()
{
    // Each drawing is rendered, and no picture is without a drawing.
    QStringList drawn = filesIn(inResources(QStringLiteral("svg")), QStringLiteral("*"));
    drawn.replaceInStrings(QStringLiteral(".svg"), QStringLiteral(".png"));
    QStringList pictures = filesIn(inResources(QStringLiteral("content")), QStringLiteral("*"));
    pictures.removeAll(QStringLiteral("logo@2x.png"));
    QVERIFY(!drawn.isEmpty());
    QCOMPARE(drawn, pictures);
}

void tst_Content::size_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");

    // Twice the size at which it is shown, or more; the logo is shown by its own size.
    QTest::newRow("logo") << QStringLiteral("logo") << QSize(480, 120);
    QTest::newRow("search-drive") << QStringLiteral("search-drive") << QSize(512, 512);
    QTest::newRow("folder") << QStringLiteral("folder") << QSize(512, 512);
    QTest::newRow("warning") << QStringLiteral("warning") << QSize(256, 256);
    QTest::newRow("start") << QStringLiteral("start") << QSize(192, 192);
    QTest::newRow("arrow_prev") << QStringLiteral("arrow_prev") << QSize(192, 192);
    QTest::newRow("arrow_next") << QStringLiteral("arrow_next") << QSize(192, 192);
    QTest::newRow("stop") << QStringLiteral("stop") << QSize(192, 192);
    QTest::newRow("actionCheck") << QStringLiteral("actionCheck") << QSize(96, 96);
    QTest::newRow("actionUncheck") << QStringLiteral("actionUncheck") << QSize(96, 96);
    QTest::newRow("actionSave") << QStringLiteral("actionSave") << QSize(96, 96);
    QTest::newRow("actionTrash") << QStringLiteral("actionTrash") << QSize(96, 96);
    QTest::newRow("twitter") << QStringLiteral("twitter") << QSize(160, 160);
    QTest::newRow("facebook") << QStringLiteral("facebook") << QSize(160, 160);
}

void tst_Content::size()
{
    // Every picture that the program shows is there, in the size that its place needs.
    QFETCH(QString, name);
    QFETCH(QSize, size);
    QCOMPARE(QImage(QStringLiteral(":/content/%1.png").arg(name)).size(), size);
}

void tst_Content::pictureIsBlueOnTransparentGround_data()
{
    QTest::addColumn<QString>("path");
    for (const QString &name : filesIn(QStringLiteral(":/content"), QStringLiteral("*"))) {
        QTest::newRow(qPrintable(name)) << QStringLiteral(":/content/") + name;
    }
}

void tst_Content::pictureIsBlueOnTransparentGround()
{
    // A picture has no ground of its own, and nothing in it is of another colour than the family's.
    QFETCH(QString, path);
    const QImage picture(path);
    QVERIFY(picture.hasAlphaChannel());
    QCOMPARE(qAlpha(picture.pixel(0, 0)), 0);
    int opaque = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            if (color.alpha() < 255) {
                continue;
            }
            ++opaque;
            const bool white = color.hslSaturation() < 10 || color.lightness() > 250;
            const bool blue = color.hslHue() > 195 && color.hslHue() < 220;
            QVERIFY2(white || blue,
                     qPrintable(QStringLiteral("%1 at %2,%3").arg(color.name()).arg(x).arg(y)));
        }
    }
    QVERIFY(opaque > picture.width() * picture.height() / 10);
}

void tst_Content::doubledLogoIsTwiceTheSize()
{
    // The logo of dense screens has exactly twice the pixels each way.
    const QImage logo(QStringLiteral(":/content/logo.png"));
    const QImage doubled(QStringLiteral(":/content/logo@2x.png"));
    QVERIFY(!logo.isNull());
    QCOMPARE(doubled.size(), logo.size() * 2);
}

TWINSIFT_TEST_MAIN(tst_Content)
#include "tst_Content.moc"
