// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TestCase.h"
#include "ui/Picture.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/progress/ProgressWidget.h"
#include "ui/progress/WidgetAnalyzeWaiting.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QStackedWidget>
#include <QTextDocument>

#include <thread>

namespace
{
constexpr char stop[] = "Stop Searching";
constexpr char configurations[] = "Scan Confurations";
constexpr char results[] = "Scan Results";

const QString completed = QStringLiteral("<h1>Finding duplicated files was completed!<h1>");
const QString stopped = QStringLiteral("<h1>Finding duplicated files was stopped!<h1>");
const QString question = QStringLiteral("Do you want to stop the scanning?");

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

/** Counts how often it is asked to stop, instead of a scan that there is not. */
class StopCountingWindow final : public MainWindow
{
public:
    int stopsAsked = 0;

    void stopScan() override { ++stopsAsked; }
};
} // namespace

class tst_WidgetAnalyzeWaiting final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;

    void freshPage();
    void looksOfTheButtons();
    void order();
    void focusOrder();
    void slotsOfTheMetaObject();
    void countersComeFirst();
    void enumerationStarts();
    void folderBeingCounted();
    void longFolderIsElided();
    void barIsPaintedAsItGrows();
    void folderIsShownAsPlainText();
    void comparisonStarts();
    void comparisonWithoutFiles();
    void comparisonGoesOn();
    void sizeText_data();
    void sizeText();
    void fileOfTheEngineNeverArrives();
    void fileShowsWithTheNextCount();
    void unknownStep();
    void finished();
    void stoppedEvent();
    void ignoredEvents();
    void defaults();
    void wayToTheOtherPages();
    void stopAnswered_data();
    void stopAnswered();
    void stopQuestion();
    void stopAfterTheEndDoesNothing_data();
    void stopAfterTheEndDoesNothing();
    void stoppedScanEndsAsCompleted();
    void nextScanShowsTheBusyBarAgain();

private:
    QLabel *label(const char *name) const { return page->findChild<QLabel *>(QLatin1String(name)); }
    QString title() const { return label("titleLabel")->text(); }
    QString info() const { return label("infoLabel")->text(); }
    QProgressBar *bar() const { return page->findChild<QProgressBar *>(); }
    ClickableLabel *button(const char *name) const;
    bool isShown(const char *name) const { return !button(name)->isHidden(); }
    QString foundDuplicates() const;
    QStackedWidget *stack() const;
    /** Bar as "minimum value maximum". */
    QString barState() const;
    QStringList wholeState() const;
    void compare(int current, int found, qint64 bytes);

    std::unique_ptr<StopCountingWindow> window;
    std::unique_ptr<Model> model;
    std::unique_ptr<WidgetAnalyzeWaiting> page;
};

void tst_WidgetAnalyzeWaiting::init()
{
    TestCase::init();
    window = std::make_unique<StopCountingWindow>();
    model = std::make_unique<Model>(nullptr);
    page = std::make_unique<WidgetAnalyzeWaiting>(model.get(), window.get());
}

void tst_WidgetAnalyzeWaiting::cleanup()
{
    page.reset();
    model.reset();
    window.reset();
    TestCase::cleanup();
}

ClickableLabel *tst_WidgetAnalyzeWaiting::button(const char *name) const
{
    for (ClickableLabel *label : page->findChildren<ClickableLabel *>()) {
        if (label->accessibleName() == QLatin1String(name)) {
            return label;
        }
    }
    qFatal("no button %s", name);
}

QString tst_WidgetAnalyzeWaiting::foundDuplicates() const
{
    return label("labelFoundDuplicates")->text();
}

// The pages may hold stacks of their own; the window's has the three pages.
QStackedWidget *tst_WidgetAnalyzeWaiting::stack() const
{
    for (QStackedWidget *widget : window->findChildren<QStackedWidget *>()) {
        if (widget->count() == 3) {
            return widget;
        }
    }
    qFatal("the window has no pages");
}

QString tst_WidgetAnalyzeWaiting::barState() const
{
    return QStringLiteral("%1 %2 %3")
        .arg(bar()->minimum())
        .arg(bar()->value())
        .arg(bar()->maximum());
}

QStringList tst_WidgetAnalyzeWaiting::wholeState() const
{
    QStringList state = {title(), info(), barState(), foundDuplicates()};
    for (const char *name : {stop, configurations, results}) {
        state.append(QStringLiteral("%1 %2").arg(isShown(name)).arg(button(name)->isEnabled()));
    }
    return state;
}

void tst_WidgetAnalyzeWaiting::compare(int current, int found, qint64 bytes)
{
    model->emitModelEvent(CountingFindFilesDuplicatedEvent(current, found, bytes));
}

void tst_WidgetAnalyzeWaiting::freshPage()
{
    // A fresh page shows a busy bar, no text, and all buttons, of which the results' is disabled.
    QCOMPARE(title(), QString());
    QCOMPARE(info(), QString());
    QCOMPARE(bar()->minimum(), 0);
    QCOMPARE(bar()->maximum(), 0);
    QCOMPARE(label("titleLabel")->alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(label("infoLabel")->alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(label("titleLabel")->textFormat(), Qt::RichText);
    QCOMPARE(label("infoLabel")->font(), QFont());
    QVERIFY(isShown(stop) && button(stop)->isEnabled());
    QVERIFY(isShown(configurations) && button(configurations)->isEnabled());
    QVERIFY(isShown(results) && !button(results)->isEnabled());
    QCOMPARE(page->findChildren<ClickableLabel *>().size(), 3);
}

void tst_WidgetAnalyzeWaiting::looksOfTheButtons()
{
    // A bold widget font, a grey caption that is not bold, an icon 48 pixels high.
    const QList<QPair<const char *, QString>> buttons = {
        {stop, QStringLiteral(":/content/stop.png")},
        {configurations, QStringLiteral(":/content/arrow_prev.png")},
        {results, QStringLiteral(":/content/arrow_next.png")},
    };
    for (const auto &one : buttons) {
        ClickableLabel *const seen = button(one.first);
        QCOMPARE(seen->font().weight(), int(QFont::Bold));
        QCOMPARE(seen->textColor, QColor(QStringLiteral("#696969")));
        QCOMPARE(seen->minimumHeight(), 52);
        ClickableLabel plain(QString::fromUtf8(one.first), page.get());
        plain.setPixmap(Picture::scaledToHeight(one.second, 48, plain.devicePixelRatioF()));
        plain.textColor = QColor(QStringLiteral("#696969"));
        plain.resize(plain.sizeHint());
        QCOMPARE(seen->minimumSize(), plain.minimumSize());
        seen->resize(plain.size());
        QCOMPARE(seen->grab().toImage(), plain.grab().toImage());
    }
}

void tst_WidgetAnalyzeWaiting::order()
{
    // From the top: counters, title, bar, information, and the buttons, the results' at the right.
    model->emitModelEvent(FindAllFilesStartedEvent());
    compare(1, 1, 1);
    button(configurations)->show();
    page->resize(900, 700);
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    const QRect counters = page->findChild<ProgressWidget *>()->geometry();
    QVERIFY(qAbs(counters.center().x() - page->rect().center().x()) <= 1);
    QVERIFY(counters.bottom() < label("titleLabel")->y());
    QVERIFY(label("titleLabel")->geometry().bottom() < bar()->y());
    QVERIFY(bar()->geometry().bottom() < label("infoLabel")->y());
    const QRect stopPlace = button(stop)->geometry();
    const QRect configurationsPlace = button(configurations)->geometry();
    const QRect resultsPlace = button(results)->geometry();
    QVERIFY(label("infoLabel")->geometry().bottom() < stopPlace.top());
    QCOMPARE(configurationsPlace.top(), stopPlace.top());
    QCOMPARE(resultsPlace.top(), stopPlace.top());
    QVERIFY(stopPlace.left() < 20);
    QVERIFY(stopPlace.right() < configurationsPlace.left());
    QVERIFY(configurationsPlace.left() - stopPlace.right() < 20);
    QVERIFY(resultsPlace.left() - configurationsPlace.right() > 200);
    QVERIFY(resultsPlace.right() > 880);
    QCOMPARE(stopPlace.size(), button(stop)->sizeHint());
}

void tst_WidgetAnalyzeWaiting::focusOrder()
{
    // Tab reaches the stop alone while a scan runs, and after it the way back, then the results.
    QPushButton outside(page.get());
    model->emitModelEvent(FindAllFilesStartedEvent());
    page->show();
    page->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page.get()));
    const QList<QWidget *> running = {button(stop), &outside};
    const QList<QWidget *> ended = {button(configurations), button(results), &outside};
    outside.setFocus(Qt::TabFocusReason);
    for (QWidget *next : running) {
        QTest::keyClick(page.get(), Qt::Key_Tab);
        QCOMPARE(page->focusWidget(), next);
    }
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    QCOMPARE(page->focusWidget(), button(results));
    outside.setFocus(Qt::TabFocusReason);
    for (QWidget *next : ended) {
        QTest::keyClick(page.get(), Qt::Key_Tab);
        QCOMPARE(page->focusWidget(), next);
    }
    QTest::keyClick(page.get(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(page->focusWidget(), button(results));
    QTest::keyClick(page.get(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(page->focusWidget(), button(configurations));
}

void tst_WidgetAnalyzeWaiting::slotsOfTheMetaObject()
{
    // The two slots are declared in this order, and there is no signal.
    const QMetaObject &meta = WidgetAnalyzeWaiting::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(),
             QByteArray("onModelEvent(const ModelEvent*)"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(),
             QByteArray("onButtonClicked()"));
}

void tst_WidgetAnalyzeWaiting::countersComeFirst()
{
    // When the page sees an event, the counters show it already.
    model->emitModelEvent(CountingFilesInFolderEvent(10, QStringLiteral("/a")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    QString seen;
    connect(bar(), &QProgressBar::valueChanged, this, [&] { seen = foundDuplicates(); });
    compare(3, 17, 0);
    QCOMPARE(seen, QStringLiteral("<H1>17</H1>"));
}

void tst_WidgetAnalyzeWaiting::enumerationStarts()
{
    // A scan begins with a busy bar and the stop button instead of the way back.
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    model->emitModelEvent(FindAllFilesStartedEvent());
    QCOMPARE(title(), QStringLiteral("<h1>Analyzing...<h1>"));
    QCOMPARE(bar()->minimum(), 0);
    QCOMPARE(bar()->maximum(), 0);
    QVERIFY(isShown(stop));
    QVERIFY(!isShown(configurations));
    QVERIFY(isShown(results));
    QVERIFY(!button(results)->isEnabled());
}

void tst_WidgetAnalyzeWaiting::folderBeingCounted()
{
    // The information names the count and the folder, whatever stands in its name.
    page->resize(800, 600);
    model->emitModelEvent(CountingFilesInFolderEvent(42, QStringLiteral("/data/%1/%2 a")));
    QCOMPARE(info(),
             QStringLiteral("<b>42</b> files in selected folders.<br>"
                            "Current folder for analysis: /data/%1/%2 a"));
    QCOMPARE(label("labelScannedFiles")->text(), QStringLiteral("<H1>42</H1>"));
}

void tst_WidgetAnalyzeWaiting::longFolderIsElided()
{
    // A long folder loses its middle: it gets three times a quarter of the page's width, in whole
    // pixels, however wide the window around the page is.
    QWidget around;
    around.resize(1500, 700);
    page->setParent(&around);
    const auto takeBack = qScopeGuard([this] { page->setParent(nullptr); });
    page->resize(803, 600);
    const auto fitting = [this](const QString &path, int pixels) {
        return label("infoLabel")->fontMetrics().elidedText(path, Qt::ElideMiddle, pixels);
    };
    // One that two pixels more would show more of.
    QString longPath = QStringLiteral("/begin/") + QString(200, QLatin1Char('m'));
    for (int i = 0; i < 200 && fitting(longPath, 600) == fitting(longPath, 602); ++i) {
        longPath.append(QLatin1Char('i'));
    }
    QVERIFY(fitting(longPath, 600) != fitting(longPath, 602));
    model->emitModelEvent(CountingFilesInFolderEvent(1, longPath));
    const QString elided = fitting(longPath, 600);
    QVERIFY(elided.startsWith(QLatin1String("/begin/")) && elided.size() < longPath.size());
    QCOMPARE(info(),
             QStringLiteral("<b>1</b> files in selected folders.<br>"
                            "Current folder for analysis: ")
                 + elided);
}

void tst_WidgetAnalyzeWaiting::barIsPaintedAsItGrows()
{
    // Each value that changes the bar reaches the screen, without anything else that repaints it.
    model->emitModelEvent(CountingFilesInFolderEvent(10, QStringLiteral("/a")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    page->resize(803, 600);
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    for (int value = 1; value <= 10; ++value) {
        QCoreApplication::processEvents();
        PaintCounter counter;
        bar()->installEventFilter(&counter);
        compare(value, 0, 0);
        QVERIFY(bar()->updatesEnabled());
        QTRY_VERIFY(counter.paints > 0);
    }
}

void tst_WidgetAnalyzeWaiting::folderIsShownAsPlainText()
{
    // A folder whose name looks like markup reads as itself.
    page->resize(800, 600);
    model->emitModelEvent(CountingFilesInFolderEvent(1, QStringLiteral("/a/<b>x</b>&amp;<br>")));
    QTextDocument document;
    document.setHtml(info());
    QVERIFY(document.toPlainText().endsWith(
        QStringLiteral("Current folder for analysis: /a/<b>x</b>&amp;<br>")));
}

void tst_WidgetAnalyzeWaiting::comparisonStarts()
{
    // The bar now runs to the number of files; the buttons stay as they are.
    model->emitModelEvent(FindAllFilesStartedEvent());
    model->emitModelEvent(CountingFilesInFolderEvent(10, QStringLiteral("/a")));
    model->emitModelEvent(CountingFilesInFolderEvent(250, QStringLiteral("/b")));
    model->emitModelEvent(FindAllFilesFinishedEvent());
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    QCOMPARE(title(), QStringLiteral("<h1>Finding duplicated files...<h1>"));
    QCOMPARE(bar()->minimum(), 0);
    QCOMPARE(bar()->maximum(), 250);
    QVERIFY(isShown(stop));
    QVERIFY(!isShown(configurations));
    QVERIFY(!button(results)->isEnabled());
}

void tst_WidgetAnalyzeWaiting::comparisonWithoutFiles()
{
    // Without a file the bar stays busy until the end.
    page->toDefaults();
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    QCOMPARE(bar()->maximum(), 0);
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    QCOMPARE(barState(), QStringLiteral("0 1 1"));
}

void tst_WidgetAnalyzeWaiting::comparisonGoesOn()
{
    // The name after "Analyzing" is empty, the rest counts.
    model->emitModelEvent(CountingFilesInFolderEvent(250, QStringLiteral("/b")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    compare(100, 7, 2048);
    QCOMPARE(barState(), QStringLiteral("0 100 250"));
    QCOMPARE(info(),
             QStringLiteral("Analyzing <b></b><br>"
                            "<b>250</b> files in selected folders<br>"
                            "Found <b>7</b> duplicated files (<b>2 kb</b> on hard drive)"));
}

void tst_WidgetAnalyzeWaiting::sizeText_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << Q_INT64_C(0) << QStringLiteral("0 kb");
    QTest::newRow("a byte less than a kilobyte") << Q_INT64_C(1023) << QStringLiteral("0 kb");
    QTest::newRow("a kilobyte") << Q_INT64_C(1024) << QStringLiteral("1 kb");
    QTest::newRow("a byte less than a megabyte") << Q_INT64_C(1048575) << QStringLiteral("1023 kb");
    QTest::newRow("a megabyte") << Q_INT64_C(1048576) << QStringLiteral("1 mb");
    QTest::newRow("truncated") << Q_INT64_C(1500000) << QStringLiteral("1 mb");
    QTest::newRow("beyond 32 bits") << Q_INT64_C(5000000000) << QStringLiteral("4768 mb");
}

void tst_WidgetAnalyzeWaiting::sizeText()
{
    // The size is in kilobytes below a megabyte and in megabytes from there on, truncated.
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    compare(1, 1, bytes);
    QVERIFY2(info().endsWith(QStringLiteral("(<b>%1</b> on hard drive)").arg(text)),
             qPrintable(info()));
}

void tst_WidgetAnalyzeWaiting::fileOfTheEngineNeverArrives()
{
    // What the engine says on its own thread, of a file or of a stop, does not reach the page.
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    compare(1, 1, 0);
    const QStringList before = wholeState();
    std::thread engine([this] {
        model->emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(QStringLiteral("/a/file")));
        model->emitModelEvent(FindDuplicatedFilesStoppedEvent());
    });
    engine.join();
    QCoreApplication::processEvents();
    QCOMPARE(wholeState(), before);
    compare(1, 1, 0);
    QCOMPARE(wholeState(), before);
    QVERIFY(info().startsWith(QLatin1String("Analyzing <b></b><br>")));
}

void tst_WidgetAnalyzeWaiting::fileShowsWithTheNextCount()
{
    // A file on the page's own thread is kept, shown whole by the next count, and read as itself.
    const QString path = QStringLiteral("/a/<i>%1/") + QString(500, QLatin1Char('x'));
    compare(1, 1, 0);
    const QString before = info();
    model->emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(path));
    QCOMPARE(info(), before);
    compare(2, 1, 0);
    QVERIFY(info().startsWith(QStringLiteral("Analyzing <b>") + path.toHtmlEscaped()
                              + QStringLiteral("</b><br>")));
}

void tst_WidgetAnalyzeWaiting::unknownStep()
{
    // A step that does not exist leaves a line in the log and the page as it is.
    const QStringList before = wholeState();
    expectMessage(QtDebugMsg, QStringLiteral("Never been here"));
    page->setStepWorking(static_cast<WidgetAnalyzeWaiting::StepWorking>(2));
    QCOMPARE(wholeState(), before);
    QCOMPARE(int(WidgetAnalyzeWaiting::StepFindAllFiles), 0);
    QCOMPARE(int(WidgetAnalyzeWaiting::StepFindDuplicatedFiles), 1);
}

void tst_WidgetAnalyzeWaiting::finished()
{
    // The end fills the bar, opens the way to the results and back, and takes the stop away.
    model->emitModelEvent(FindAllFilesStartedEvent());
    compare(1, 2, 3);
    const QString before = info();
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    QCOMPARE(title(), completed);
    QCOMPARE(info(), before);
    QCOMPARE(barState(), QStringLiteral("0 1 1"));
    QVERIFY(isShown(results) && button(results)->isEnabled());
    QVERIFY(isShown(configurations));
    QVERIFY(!isShown(stop));
}

void tst_WidgetAnalyzeWaiting::stoppedEvent()
{
    // A stop shows the results' button but leaves it as enabled as it was.
    model->emitModelEvent(FindAllFilesStartedEvent());
    button(results)->hide();
    model->emitModelEvent(FindDuplicatedFilesStoppedEvent());
    QCOMPARE(title(), stopped);
    QCOMPARE(barState(), QStringLiteral("0 1 1"));
    QVERIFY(isShown(results) && !button(results)->isEnabled());
    QVERIFY(isShown(configurations));
    QVERIFY(!isShown(stop));
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    model->emitModelEvent(FindDuplicatedFilesStoppedEvent());
    QVERIFY(button(results)->isEnabled());
}

void tst_WidgetAnalyzeWaiting::ignoredEvents()
{
    // The end of the enumeration and the answer about updates change nothing.
    model->emitModelEvent(CountingFilesInFolderEvent(250, QStringLiteral("/b")));
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    const QStringList before = wholeState();
    model->emitModelEvent(FindAllFilesFinishedEvent());
    model->emitModelEvent(
        GetUpdateVersionEvent(QStringLiteral("9"), QStringLiteral("9"), QStringLiteral("x")));
    QCOMPARE(wholeState(), before);
}

void tst_WidgetAnalyzeWaiting::defaults()
{
    // Before a scan the counts are zeroed and the results locked; texts, bar and buttons stay.
    model->emitModelEvent(CountingFilesInFolderEvent(250, QStringLiteral("/b")));
    compare(250, 7, 2097152);
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    const QString before = info();
    page->toDefaults();
    for (const char *name : {"labelScannedFiles", "labelUsedSpace", "labelFoundDuplicates"}) {
        QCOMPARE(label(name)->text(), QStringLiteral("<H1>0</H1>"));
    }
    QVERIFY(!button(results)->isEnabled());
    QCOMPARE(title(), completed);
    QCOMPARE(info(), before);
    QCOMPARE(barState(), QStringLiteral("0 1 1"));
    QVERIFY(!isShown(stop) && isShown(configurations) && isShown(results));
    compare(0, 0, 0);
    QVERIFY(info().contains(QLatin1String("<b>0</b> files in selected folders")));
}

void tst_WidgetAnalyzeWaiting::wayToTheOtherPages()
{
    // The two ways on change the window's page; the results' only when they are there.
    QStackedWidget *const pages = stack();
    pages->setCurrentIndex(1);
    QTest::mouseClick(button(results), Qt::LeftButton);
    QCOMPARE(pages->currentIndex(), 1);
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    QTest::mouseClick(button(results), Qt::LeftButton);
    QCOMPARE(pages->currentIndex(), 2);
    QTest::mouseClick(button(configurations), Qt::LeftButton);
    QCOMPARE(pages->currentIndex(), 0);
    QCOMPARE(window->stopsAsked, 0);
}

void tst_WidgetAnalyzeWaiting::stopAnswered_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("stops");
    QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
    QTest::newRow("no") << int(QMessageBox::No) << 0;
}

void tst_WidgetAnalyzeWaiting::stopAnswered()
{
    // Only Yes stops the scan, and the page keeps its texts until the engine reports its groups.
    QFETCH(int, answer);
    QFETCH(int, stops);
    ModalDriver driver;
    model->emitModelEvent(FindAllFilesStartedEvent());
    model->emitModelEvent(CountingFilesInFolderEvent(250, QStringLiteral("/b")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    compare(20, 7, 2097152);
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    stack()->setCurrentIndex(1);
    const QStringList before = wholeState();
    driver.expectMessageBox(QStringLiteral("Question"),
                            question,
                            QMessageBox::Yes | QMessageBox::No,
                            static_cast<QMessageBox::StandardButton>(answer));
    QTest::mouseClick(button(stop), Qt::LeftButton);
    QCOMPARE(driver.failures(), QStringList());
    QCOMPARE(window->stopsAsked, stops);
    QCOMPARE(wholeState(), before);
    QCOMPARE(stack()->currentIndex(), 1);
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    QCOMPARE(title(), completed);
}

void tst_WidgetAnalyzeWaiting::stopQuestion()
{
    // The question has its sign, stands before the page, and Escape means No.
    ModalDriver driver;
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QWidget *parent = nullptr;
    const auto check = [&](QWidget *widget) {
        const auto *const box = qobject_cast<QMessageBox *>(widget);
        icon = box != nullptr ? box->icon() : QMessageBox::NoIcon;
        parent = widget->parentWidget();
        return QString();
    };
    driver.expect(question, check, [](QWidget *widget) {
        QTest::keyClick(widget, Qt::Key_Escape);
    });
    QTest::mouseClick(button(stop), Qt::LeftButton);
    QCOMPARE(driver.failures(), QStringList());
    QCOMPARE(icon, QMessageBox::Question);
    QCOMPARE(parent, page.get());
    QCOMPARE(window->stopsAsked, 0);
}

void tst_WidgetAnalyzeWaiting::stopAfterTheEndDoesNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("as it is") << completed;
    QTest::newRow("capitals") << completed.toUpper();
}

void tst_WidgetAnalyzeWaiting::stopAfterTheEndDoesNothing()
{
    // A title that says "completed", in any case, leaves nothing to stop: nobody is asked.
    QFETCH(QString, text);
    ModalDriver driver;
    label("titleLabel")->setText(text);
    QTest::mouseClick(button(stop), Qt::LeftButton);
    QCOMPARE(driver.failures(), QStringList());
    QCOMPARE(window->stopsAsked, 0);
}

void tst_WidgetAnalyzeWaiting::stoppedScanEndsAsCompleted()
{
    // The groups found before a stop end the scan like any other.
    model->emitModelEvent(FindAllFilesStartedEvent());
    model->emitModelEvent(
        FindDuplicatedFilesFinishedEvent({{QStringLiteral("/a"), QStringLiteral("/b")}}));
    QCOMPARE(title(), completed);
    QVERIFY(button(results)->isEnabled());
}

void tst_WidgetAnalyzeWaiting::nextScanShowsTheBusyBarAgain()
{
    // A second scan starts from a busy bar and counts from its own files.
    model->emitModelEvent(CountingFilesInFolderEvent(250, QStringLiteral("/b")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    compare(250, 7, 2097152);
    model->emitModelEvent(FindDuplicatedFilesFinishedEvent({}));
    page->toDefaults();
    model->emitModelEvent(FindAllFilesStartedEvent());
    QCOMPARE(bar()->maximum(), 0);
    QVERIFY(isShown(stop));
    model->emitModelEvent(CountingFilesInFolderEvent(3, QStringLiteral("/b")));
    model->emitModelEvent(FindDuplicatedFilesStartedEvent());
    QCOMPARE(bar()->maximum(), 3);
    compare(2, 0, 0);
    QCOMPARE(barState(), QStringLiteral("0 2 3"));
}

TWINSIFT_TEST_MAIN(tst_WidgetAnalyzeWaiting)
#include "tst_WidgetAnalyzeWaiting.moc"
