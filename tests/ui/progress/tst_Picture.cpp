// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/Picture.h"

namespace
{
QString logo()
{
    return QStringLiteral(":/content/logo.png");
}

QImage pixels(const QPixmap &pixmap)
{
    QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1);
    return image;
}
} // namespace

class tst_Picture final : public TestCase
{
    Q_OBJECT

private slots:
    void sizes_data();
    void sizes();
    void doubledDrawingOnDenseScreens();
    void ownSize();
    void missingPicture();
};

void tst_Picture::sizes_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<QSize>("box");
    QTest::addColumn<QSize>("toHeight");
    QTest::addColumn<QSize>("toWidth");

    QTest::newRow("1") << 1.0 << QSize(30, 20) << QSize(320, 80) << QSize(240, 60);
    QTest::newRow("1.5") << 1.5 << QSize(45, 30) << QSize(480, 120) << QSize(360, 90);
    QTest::newRow("2") << 2.0 << QSize(60, 40) << QSize(640, 160) << QSize(480, 120);
    QTest::newRow("3") << 3.0 << QSize(90, 60) << QSize(960, 240) << QSize(720, 180);
}

void tst_Picture::sizes()
{
    // A size asked for is in logical pixels, and the pixmap knows its ratio.
    QFETCH(qreal, ratio);
    const QPixmap box = Picture::scaled(logo(), QSize(30, 20), ratio);
    const QPixmap toHeight = Picture::scaledToHeight(logo(), 80, ratio);
    const QPixmap toWidth = Picture::scaledToWidth(logo(), 240, ratio);
    QTEST(box.size(), "box");
    QTEST(toHeight.size(), "toHeight");
    QTEST(toWidth.size(), "toWidth");
    QCOMPARE(box.devicePixelRatio(), ratio);
    QCOMPARE(toHeight.devicePixelRatio(), ratio);
    QCOMPARE(toWidth.devicePixelRatio(), ratio);
}

void tst_Picture::doubledDrawingOnDenseScreens()
{
    // At ratio 1 the plain drawing is shown, above it the doubled one, neither of them scaled.
    const auto format = QImage::Format_ARGB32_Premultiplied;
    QCOMPARE(pixels(Picture::scaledToWidth(logo(), 480, 1)),
             QImage(logo()).convertToFormat(format));
    QImage doubled = QImage(QStringLiteral(":/content/logo@2x.png")).convertToFormat(format);
    doubled.setDevicePixelRatio(1);
    QCOMPARE(pixels(Picture::scaledToWidth(logo(), 480, 2)), doubled);
}

void tst_Picture::ownSize()
{
    // The own size is that of the plain drawing, and invalid where there is none.
    QCOMPARE(Picture::size(logo()), QSize(480, 120));
    QCOMPARE(Picture::size(QStringLiteral(":/content/none.png")), QSize());
}

void tst_Picture::missingPicture()
{
    // A picture that does not exist is a null pixmap, and the toolkit's log says so.
    expectMessage(QtWarningMsg, QRegularExpression(QStringLiteral("null pixmap")));
    QVERIFY(Picture::scaledToHeight(QStringLiteral(":/content/none.png"), 48, 1).isNull());
}

TWINSIFT_TEST_MAIN(tst_Picture)
#include "tst_Picture.moc"
