// SPDX-License-Identifier: MIT
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "tests/support/TestCase.h"
#include "ui/progress/ProgressWidget.h"

#include <QLabel>
#include <QTimer>

namespace
{
class PaintCounter final : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

QLabel *labelOf(const ProgressWidget &widget, const char *name)
{
    return widget.findChild<QLabel *>(QLatin1String(name));
}

// The texts of the three numbers, from left to right.
QStringList numbers(const ProgressWidget &widget)
{
    return {labelOf(widget, "labelScannedFiles")->text(),
            labelOf(widget, "labelUsedSpace")->text(),
            labelOf(widget, "labelFoundDuplicates")->text()};
}

QStringList headings(const char *first, const char *second, const char *third)
{
    const QString heading = QStringLiteral("<H1>%1</H1>");
    return {heading.arg(QLatin1String(first)),
            heading.arg(QLatin1String(second)),
            heading.arg(QLatin1String(third))};
}

QLabel *captionOf(const ProgressWidget &widget, const char *text)
{
    for (QLabel *label : widget.findChildren<QLabel *>()) {
        if (label->text() == QLatin1String(text)) {
            return label;
        }
    }
    return nullptr;
}
} // namespace

class tst_ProgressWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void initialTexts();
    void looks();
    void columns();
    void slotsOfTheMetaObject();
    void resetShowsNoSpaces();
    void countingFiles();
    void countingDuplicates();
    void sizeInMegabytes_data();
    void sizeInMegabytes();
    void directCallWithACount_data();
    void directCallWithACount();
    void otherEventsAreIgnored();
    void pointInCircle_data();
    void pointInCircle();
    void phaseRunsInSteps();
    void timerIsNeverStarted();

private:
    std::unique_ptr<Model> model;
    std::unique_ptr<ProgressWidget> widget;
};

void tst_ProgressWidget::init()
{
    TestCase::init();
    model = std::make_unique<Model>(nullptr);
    widget = std::make_unique<ProgressWidget>(model.get(), nullptr);
}

void tst_ProgressWidget::cleanup()
{
    widget.reset();
    model.reset();
    TestCase::cleanup();
}

void tst_ProgressWidget::initialTexts()
{
    // Before the first scan the zeros have spaces around them.
    QCOMPARE(numbers(*widget), headings(" 0 ", " 0 ", " 0 "));
}

void tst_ProgressWidget::looks()
{
    // The numbers are large, bold and blue, the captions grey and above nothing.
    for (const char *name : {"labelScannedFiles", "labelUsedSpace", "labelFoundDuplicates"}) {
        const QLabel *const number = labelOf(*widget, name);
        QCOMPARE(number->font().pixelSize(), 42);
        QCOMPARE(number->font().weight(), int(QFont::Bold));
        QCOMPARE(number->styleSheet(), QStringLiteral("color: #3199e5"));
        QCOMPARE(number->alignment(), Qt::AlignHCenter | Qt::AlignBottom);
        QVERIFY(!number->wordWrap());
    }
    for (const char *text :
         {"<h3>Scanned Files</h3>", "<h3>Used Space(Mb)</h3>", "<h3>Found Duplicates</h3>"}) {
        const QLabel *const caption = captionOf(*widget, text);
        QVERIFY2(caption != nullptr, text);
        QCOMPARE(caption->styleSheet(), QStringLiteral("color: #4d4d4d"));
        QCOMPARE(caption->alignment(), Qt::AlignHCenter | Qt::AlignTop);
    }
    QCOMPARE(widget->findChildren<QLabel *>().size(), 6);
}

void tst_ProgressWidget::columns()
{
    // Three columns, 45 pixels and the layout's own spacing apart, in the middle of the panel.
    widget->resize(1000, 400);
    widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
    const QRect scanned = labelOf(*widget, "labelScannedFiles")->geometry();
    const QRect used = labelOf(*widget, "labelUsedSpace")->geometry();
    const QRect found = labelOf(*widget, "labelFoundDuplicates")->geometry();
    const QRect scannedCaption = captionOf(*widget, "<h3>Scanned Files</h3>")->geometry();
    const QRect usedCaption = captionOf(*widget, "<h3>Used Space(Mb)</h3>")->geometry();
    const QRect foundCaption = captionOf(*widget, "<h3>Found Duplicates</h3>")->geometry();
    QCOMPARE(scannedCaption.left(), scanned.left());
    QCOMPARE(usedCaption.left(), used.left());
    QCOMPARE(foundCaption.left(), found.left());
    QVERIFY(scannedCaption.top() > scanned.bottom());
    QVERIFY(used.left() - scanned.right() - 1 >= 45);
    QCOMPARE(found.left() - used.right(), used.left() - scanned.right());
    QVERIFY(qAbs(scanned.left() - (999 - found.right())) <= 1);
    QVERIFY(qAbs(scanned.top() - (399 - scannedCaption.bottom())) <= 1);
}

void tst_ProgressWidget::slotsOfTheMetaObject()
{
    // The two slots are declared in this order, and there is no signal.
    const QMetaObject &meta = ProgressWidget::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("onTimeout()"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(),
             QByteArray("onModelEvent(const ModelEvent*)"));
}

void tst_ProgressWidget::resetShowsNoSpaces()
{
    // After a reset all numbers are zeros without spaces.
    widget->updateAnalyzeCount(7, QString());
    widget->updateFindDuplicatedFiles(-1, 3, 5000000);
    widget->resetToDefaults();
    QCOMPARE(numbers(*widget), headings("0", "0", "0"));
}

void tst_ProgressWidget::countingFiles()
{
    // A count of the enumeration shows as scanned files and nowhere else.
    widget->resetToDefaults();
    model->emitModelEvent(CountingFilesInFolderEvent(12345, QStringLiteral("/a/folder")));
    QCOMPARE(numbers(*widget), headings("12345", "0", "0"));
    model->countingFilesInFolderChanged(12346, QStringLiteral("/b"));
    QCOMPARE(numbers(*widget), headings("12346", "0", "0"));
}

void tst_ProgressWidget::countingDuplicates()
{
    // The scanned files keep the count of the enumeration while files are compared.
    model->emitModelEvent(CountingFilesInFolderEvent(10, QStringLiteral("/a")));
    model->emitModelEvent(CountingFindFilesDuplicatedEvent(99, 4, qint64(3) * 1048576));
    QCOMPARE(numbers(*widget), headings("10", "3", "4"));
}

void tst_ProgressWidget::sizeInMegabytes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << Q_INT64_C(0) << QStringLiteral("<H1>0</H1>");
    QTest::newRow("a byte less than one") << Q_INT64_C(1048575) << QStringLiteral("<H1>0</H1>");
    QTest::newRow("one") << Q_INT64_C(1048576) << QStringLiteral("<H1>1</H1>");
    QTest::newRow("a byte less than two") << Q_INT64_C(2097151) << QStringLiteral("<H1>1</H1>");
    QTest::newRow("beyond 32 bits")
        << Q_INT64_C(9007199254740992) << QStringLiteral("<H1>8589934592</H1>");
}

void tst_ProgressWidget::sizeInMegabytes()
{
    // The used space is in whole megabytes, truncated.
    QFETCH(qint64, bytes);
    model->emitModelEvent(CountingFindFilesDuplicatedEvent(1, 1, bytes));
    QTEST(labelOf(*widget, "labelUsedSpace")->text(), "text");
}

void tst_ProgressWidget::directCallWithACount_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("negative") << -1 << QStringLiteral("<H1>5</H1>");
    QTest::newRow("zero") << 0 << QStringLiteral("<H1>5</H1>");
    QTest::newRow("one") << 1 << QStringLiteral("<H1>1</H1>");
}

void tst_ProgressWidget::directCallWithACount()
{
    // Only a count above zero replaces the scanned files.
    QFETCH(int, count);
    widget->updateAnalyzeCount(5, QString());
    widget->updateFindDuplicatedFiles(count, 2, 0);
    QTEST(labelOf(*widget, "labelScannedFiles")->text(), "text");
}

void tst_ProgressWidget::otherEventsAreIgnored()
{
    // No other event changes a number.
    model->emitModelEvent(CountingFilesInFolderEvent(10, QStringLiteral("/a")));
    model->emitModelEvent(CountingFindFilesDuplicatedEvent(99, 4, qint64(3) * 1048576));
    model->emitModelEvent(FindAllFilesStartedEvent());
    model->emitModelEvent(FindAllFilesFinishedEvent());
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    model->emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(QStringLiteral("/a/b")));
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    model->emitModelEvent(FindDuplicatedFilesStoppedEvent());
    model->emitModelEvent(
        GetUpdateVersionEvent(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")));
    QCOMPARE(numbers(*widget), headings("10", "3", "4"));
}

void tst_ProgressWidget::pointInCircle_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<bool>("inside");
    QTest::newRow("centre") << QPoint(10, 20) << true;
    QTest::newRow("on the circle") << QPoint(13, 24) << true;
    QTest::newRow("on the circle, left") << QPoint(5, 20) << true;
    QTest::newRow("just outside") << QPoint(14, 24) << false;
    QTest::newRow("corner of the square") << QPoint(15, 25) << false;
    QTest::newRow("far") << QPoint(2000000000, 2000000000) << false;
}

void tst_ProgressWidget::pointInCircle()
{
    // The circle itself belongs to the inside; its centre is (10, 20), its radius 5.
    QFETCH(QPoint, point);
    QFETCH(bool, inside);
    QCOMPARE(widget->pointInCircle(point.x(), point.y(), 10, 20, 5), inside);
    QCOMPARE(widget->pointInCircle(10, 20, 10, 20, 0), true);
}

void tst_ProgressWidget::phaseRunsInSteps()
{
    // The phase runs 0, 5, ..., 50 and starts again, and each step repaints at once.
    widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
    PaintCounter counter;
    widget->installEventFilter(&counter);
    QCOMPARE(widget->animationPhase(), 0);
    for (int phase = 5; phase <= 50; phase += 5) {
        const int paints = counter.paints;
        widget->onTimeout();
        QCOMPARE(widget->animationPhase(), phase);
        QCOMPARE(counter.paints, paints + 1);
    }
    widget->onTimeout();
    QCOMPARE(widget->animationPhase(), 0);
}

void tst_ProgressWidget::timerIsNeverStarted()
{
    // The one timer moves the phase on, and neither a scan nor a reset starts it.
    const QList<QTimer *> timers =
        widget->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    widget->show();
    widget->resetToDefaults();
    model->emitModelEvent(FindAllFilesStartedEvent());
    model->emitModelEvent(CountingFilesInFolderEvent(10, QStringLiteral("/a")));
    QVERIFY(!timers.first()->isActive());
    timers.first()->start(0);
    QTRY_VERIFY(widget->animationPhase() > 0);
    timers.first()->stop();
}

TWINSIFT_TEST_MAIN(tst_ProgressWidget)
#include "tst_ProgressWidget.moc"
