// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "tests/support/TestCase.h"
#include "ui/progress/ProgressWidget.h"

#include <QLabel>

#include <limits>
#include <memory>

/** Counters of many digits in the window as it opens; run at several pixel ratios. */
class tst_LargeCounters final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void smallNumbersAreDrawnAsTheyAre_data();
    void smallNumbersAreDrawnAsTheyAre();
    void allDigitsAreSeen_data();
    void allDigitsAreSeen();

private:
    void showNumbers(int scanned, int megabytes, int found) const;
    QList<QLabel *> numbers() const;

    std::unique_ptr<MainWindow> window;
};

namespace
{
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
const QColor ink(QStringLiteral("#3199e5"));

QImage drawing(QWidget *label)
{
    const qreal ratio = label->devicePixelRatioF();
    QImage image(label->size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::white);
    label->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

// The label as the toolkit draws it where there is room for all of it.
QImage plainDrawing(const QLabel &label, const QSize &size)
{
    QLabel plain(label.text());
    plain.setFont(label.font());
    plain.setStyleSheet(label.styleSheet());
    plain.setAlignment(label.alignment());
    plain.resize(size);
    return drawing(&plain);
}

// In pixels of the screen.
QRect inkRect(const QImage &image)
{
    QRect rect;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != Qt::white) {
                rect |= QRect(x, y, 1, 1);
            }
        }
    }
    return rect;
}

// How much of the area is ink, from 0 to 1.
double inkShare(const QImage &image, const QRect &area)
{
    const QColor paper(Qt::white);
    double sum = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            sum += (paper.redF() - image.pixelColor(x, y).redF()) / (paper.redF() - ink.redF());
        }
    }
    return sum / area.width() / area.height();
}
} // namespace

void tst_LargeCounters::init()
{
    TestCase::init();
    // Without a screen each generation of the toolkit has a font of another size, and the columns are
    // as wide as their captions.
    QFont font = QApplication::font();
    font.setPointSize(12);
    QApplication::setFont(font);
    window = std::make_unique<MainWindow>();
    window->setCurrentWidget(1);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void tst_LargeCounters::cleanup()
{
    window.reset();
    TestCase::cleanup();
}

QList<QLabel *> tst_LargeCounters::numbers() const
{
    QList<QLabel *> labels;
    for (const char *name : {"labelScannedFiles", "labelUsedSpace", "labelFoundDuplicates"}) {
        labels.append(window->findChild<QLabel *>(QLatin1String(name)));
    }
    return labels;
}

void tst_LargeCounters::showNumbers(int scanned, int megabytes, int found) const
{
    auto *const model = window->findChild<Model *>();
    model->emitModelEvent(CountingFilesInFolderEvent(scanned, QStringLiteral("/a")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    model->emitModelEvent(
        CountingFindFilesDuplicatedEvent(scanned, found, qint64(megabytes) * 1048576));
    QCoreApplication::processEvents(); // the layout follows the texts
}

void tst_LargeCounters::smallNumbersAreDrawnAsTheyAre_data()
{
    QTest::addColumn<int>("scanned");
    QTest::addColumn<int>("megabytes");
    QTest::addColumn<int>("found");
    QTest::newRow("zeros") << 0 << 0 << 0;
    QTest::newRow("thousands") << 12345 << 678 << 9012;
    QTest::newRow("one in millions") << 1000000 << 0 << 0;
}

void tst_LargeCounters::smallNumbersAreDrawnAsTheyAre()
{
    // A number for which there is room looks as it does in a plain label, pixel for pixel.
    QFETCH(const int, scanned);
    QFETCH(const int, megabytes);
    QFETCH(const int, found);
    showNumbers(scanned, megabytes, found);
    for (QLabel *const label : numbers()) {
        QVERIFY(label->width() >= label->sizeHint().width());
        // Once before: the first drawing of a label settles where its text stands.
        drawing(label);
        QCOMPARE(drawing(label), plainDrawing(*label, label->size()));
    }
}

void tst_LargeCounters::allDigitsAreSeen_data()
{
    QTest::addColumn<int>("scanned");
    QTest::addColumn<int>("megabytes");
    QTest::addColumn<int>("found");
    QTest::newRow("millions") << 1000000 << 1000000 << 1000000;
    QTest::newRow("as many files as there may be") << highest << 0 << 0;
    QTest::newRow("all as large as may be") << highest << highest << highest;
    QTest::newRow("wrapped") << lowest << lowest << lowest;
    QTest::newRow("one of each") << lowest << 7 << highest;
}

void tst_LargeCounters::allDigitsAreSeen()
{
    // A number that is wider than its column is drawn whole, in its own shape and colour.
    QFETCH(const int, scanned);
    QFETCH(const int, megabytes);
    QFETCH(const int, found);
    showNumbers(scanned, megabytes, found);
    const auto *const panel = window->findChild<ProgressWidget *>();
    QVERIFY(panel->minimumSizeHint().width() <= panel->width());
    for (QLabel *const label : numbers()) {
        QVERIFY(QRect(QPoint(), window->size())
                    .contains(QRect(label->mapTo(window.get(), QPoint()), label->size())));
        const QImage shown = drawing(label);
        const QImage whole = plainDrawing(*label, label->sizeHint());
        const QRect shownInk = inkRect(shown);
        const QRect wholeInk = inkRect(whole);
        const double scale = double(shownInk.width()) / wholeInk.width();
        QVERIFY2(scale > 0.4, qPrintable(QString::number(scale)));
        // Cut off it would be as high as before, and another picture. Edges take a pixel each.
        QVERIFY(qAbs(shownInk.height() - scale * wholeInk.height()) <= 2);
        QVERIFY(qAbs(inkShare(shown, shownInk) - inkShare(whole, wholeInk)) < 0.03);
        QVERIFY(shownInk.left() > 0 && shownInk.right() < shown.width() - 1);
        QVERIFY(shownInk.top() > 0 && shownInk.bottom() < shown.height() - 1);
        QVERIFY(qAbs(shownInk.center().x() - shown.width() / 2) <= 0.02 * shown.width() + 2);
        QCOMPARE(label->font().pixelSize(), 42);
        QCOMPARE(label->font().weight(), int(QFont::Bold));
    }
}

TWINSIFT_TEST_MAIN(tst_LargeCounters)
#include "tst_LargeCounters.moc"
