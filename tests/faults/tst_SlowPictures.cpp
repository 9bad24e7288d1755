// SPDX-License-Identifier: MIT
#include "tests/faults/FaultShim.h"
#include "tests/support/TestCase.h"
#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/PictureFile.h"
#include "ui/results/ThumbnailPrefetcher.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTableView>

#include <memory>

namespace
{
constexpr int maxSeconds = 4;

// Does not pack, so that the file is as large as the picture.
QImage noise(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(1);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, random.generate() | 0xff000000U);
        }
    }
    return image;
}
} // namespace

/** Pictures on a disk that answers slowly. */
class tst_SlowPictures final : public TestCase
{
    Q_OBJECT

private slots:
    void cleanup() override;
    void haveNoIconInsteadOfWaiting_data();
    void haveNoIconInsteadOfWaiting();
    void haveTheirIconWhereThereIsTime();
    void doNotKeepATableThatGoes_data();
    void doNotKeepATableThatGoes();
};

void tst_SlowPictures::cleanup()
{
    FaultShim::watch("");
    TestCase::cleanup();
}

void tst_SlowPictures::haveNoIconInsteadOfWaiting_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("PNG") << QStringLiteral("png");
    QTest::newRow("BMP") << QStringLiteral("bmp");
    QTest::newRow("JPEG") << QStringLiteral("jpg");
}

void tst_SlowPictures::haveNoIconInsteadOfWaiting()
{
    // A picture that would take many seconds to arrive has none after two, and no half of one.
    QFETCH(QString, format);
    allowMessages(QRegularExpression(QStringLiteral("JPEG")));
    const QString file = path(QStringLiteral("a.") + format);
    QVERIFY(noise(QSize(2000, 1500)).save(file, nullptr, 95));
    QVERIFY(QFileInfo(file).size() > 3000000);
    FaultShim::watch(QFile::encodeName(path(QString())).constData());
    FaultShim::delay(FaultShim::Read, 900);
    QElapsedTimer timer;
    timer.start();
    PictureFile picture(file);
    QVERIFY(picture.readAtHeight(32).isNull());
    QVERIFY(FaultShim::calls(FaultShim::Read) >= 2);
    QVERIFY(timer.elapsed() < maxSeconds * 1000);
}

void tst_SlowPictures::haveTheirIconWhereThereIsTime()
{
    // A picture that arrives in time is shown, however slowly.
    const QString file = path(QStringLiteral("a.png"));
    QVERIFY(noise(QSize(40, 30)).save(file));
    FaultShim::watch(QFile::encodeName(path(QString())).constData());
    FaultShim::delay(FaultShim::Read, 300);
    QCOMPARE(PictureFile(file).readAtHeight(32).size(), QSize(43, 32));
    QVERIFY(FaultShim::calls(FaultShim::Read) > 0);
}

void tst_SlowPictures::doNotKeepATableThatGoes_data()
{
    QTest::addColumn<int>("delay");
    QTest::newRow("a slow disk") << 300;
    QTest::newRow("one that hangs") << 3000;
}

void tst_SlowPictures::doNotKeepATableThatGoes()
{
    // A table whose next rows are being decoded goes at once, whatever their reading waits for.
    QFETCH(int, delay);
    QStringList files;
    for (int i = 0; i < 100; ++i) {
        files.append(path(QStringLiteral("%1.png").arg(i)));
        QVERIFY(noise(QSize(300, 200)).save(files.last()));
    }
    auto view = std::make_unique<QTableView>();
    DuplicatedFilesTableModel model;
    model.setDuplicatedFilesInList({files});
    for (const QString &file : files) {
        // What is in view is decoded as it is asked for, which is not the matter here.
        if (model.rowCount() - files.indexOf(file) <= 30) {
            model.scaledPixmapToIcon(file);
        }
    }
    view->setModel(&model);
    new ThumbnailPrefetcher(view.get(), &model);
    FaultShim::watch(QFile::encodeName(path(QString())).constData());
    FaultShim::delay(FaultShim::Read, delay);
    view->resize(600, 20 * view->rowHeight(0));
    view->show();
    QTRY_VERIFY(FaultShim::calls(FaultShim::Read) > 0);
    QElapsedTimer timer;
    timer.start();
    view.reset();
    QVERIFY(timer.elapsed() < 1000);
    // No further picture is begun by those that come back.
    QTest::qSleep(2 * delay);
    const long calls = FaultShim::calls(FaultShim::Read);
    QTest::qSleep(2 * delay);
    QCOMPARE(FaultShim::calls(FaultShim::Read), calls);
}

TWINSIFT_TEST_MAIN(tst_SlowPictures)
#include "tst_SlowPictures.moc"
