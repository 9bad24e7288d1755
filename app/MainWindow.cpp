// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/Controller.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "app/Product.h"
#include "engine/Background.h"
#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "ui/LightPalette.h"
#include "ui/Picture.h"
#include "ui/ScreenFit.h"
#include "ui/SideWindow.h"
#include "ui/config/ScanConfigurationWidget.h"
#include "ui/progress/AboutWidget.h"
#include "ui/progress/StatusBarWidget.h"
#include "ui/progress/WidgetAnalyzeWaiting.h"
#include "ui/results/DuplicatedFilesListWidget.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QStackedWidget>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <cstdlib>

namespace
{
constexpr int postDelayMilliseconds = 10;
// Of the engine, and of the threads that read for it.
constexpr int maxMillisecondsOfLeaving = 750;
constexpr int minimumWidthPixels = 1024;
constexpr int minimumHeightPixels = 1280;

// The version's digits without the points, as one number: 1.2.10 counts as newer than 1.2.3.
int versionNumber(QString version)
{
    return version.remove(QLatin1Char('.')).toInt();
}

void openInDesktop(const char *address)
{
    QDesktopServices::openUrl(QUrl(QString::fromLatin1(address)));
}

// A controller outlives its window, since a request or a queued signal may still be on its way to
// it. Listed here so that it stays reachable.
void keepForProcess(Controller *controller)
{
    static auto *const controllers = new QList<Controller *>; // for as long as the process lives
    controllers->append(controller);
}

int desktopPixelRatio()
{
    // The highest of all screens, cut to a whole number.
    return qMax(1, static_cast<int>(qGuiApp->devicePixelRatio()));
}
} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    setWindowIcon(QIcon(QStringLiteral(":/content/search-drive.png")));
    LightPalette::install();
    model = new Model(this);
    connect(model,
            SIGNAL(modelEvent(const ModelEvent*)), this, SLOT(onModelEvent(const ModelEvent*)));
    controller = new Controller(model, nullptr);
    keepForProcess(controller);

    stackedWidget = new QStackedWidget(this);
    auto *const layout = new QVBoxLayout;
    layout->addLayout(createHeader());
    layout->addWidget(stackedWidget);
    Configuration::instance()->nameFilters = QStringList(QStringLiteral("*.*"));
    createPages();
    auto *const central = new QWidget;
    central->setLayout(layout);
    setCentralWidget(central);
    createStatusBar(layout);
    createMenu();
    endWithTheLastWindow();
    controller->checkUpdate();
    startEngine();
    setFittingSize();
    new ScreenFit(this);
}

MainWindow::~MainWindow()
{
    // Leaving the process while the worker runs toolkit code crashes it, and so does a QThread that
    // is deleted before it has finished. So the scan ends first, and then the thread; what is left
    // to the chain of deletions is an idle pair. Nobody needs to look on.
    hide();
    engineThread->requestInterruption();
    engineThread->quit();
    if (!engineThread->wait(maxMillisecondsOfLeaving)
        || !Background::waitForDone(maxMillisecondsOfLeaving)) {
        // A thread waits for a file that nobody answers for, perhaps for ever, and nothing is left
        // to be written: the user's actions on files are done before they return. Where even the
        // system cannot end the thread, the window must have gone from the screen by itself.
        QGuiApplication::sync();
        std::_Exit(EXIT_SUCCESS);
    }
}

QHBoxLayout *MainWindow::createHeader()
{
    const QString picture = QStringLiteral(":/content/logo.png");
    const int shownHeight = static_cast<int>(Picture::size(picture).height() / 1.5);
    auto *const logo = new QLabel;
    logo->setPixmap(Picture::scaledToHeight(picture, shownHeight, devicePixelRatioF()));
    auto *const header = new QHBoxLayout;
    header->setContentsMargins(0, 0, 0, 0);
    header->addWidget(logo);
    header->addStretch();
    return header;
}

void MainWindow::createPages()
{
    scanConfigurationWidget = new ScanConfigurationWidget(this);
    widgetAnalyzeWaiting = new WidgetAnalyzeWaiting(model, this);
    duplicatedFilesListWidget = new DuplicatedFilesListWidget(model, this);
    stackedWidget->addWidget(scanConfigurationWidget);
    stackedWidget->addWidget(widgetAnalyzeWaiting);
    stackedWidget->addWidget(duplicatedFilesListWidget);
}

void MainWindow::createStatusBar(QVBoxLayout *layout)
{
    statusBarWidget = new StatusBarWidget(nullptr);
    layout->addWidget(statusBarWidget);
    const QString homepage =
        QStringLiteral("<a href=\"%1\">%2</a>")
            .arg(QLatin1String(Product::homepage), QLatin1String(Product::homepageShortForm));
    statusBarWidget->showRightMessage(
        QStringLiteral("%1 Build %2 %3")
            .arg(QLatin1String(Product::version), QLatin1String(Product::build), homepage));
}

void MainWindow::createMenu()
{
    menu = menuBar()->addMenu(QStringLiteral("Menu"));
    connect(menu, SIGNAL(triggered(QAction*)), this, SLOT(onMenuClicked(QAction*)));
    menu->addAction(QStringLiteral("About"));
    menu->addAction(QStringLiteral("Homepage"));
    menu->addAction(QStringLiteral("Feedback"));
    menu->addSeparator();
    menu->addAction(QStringLiteral("Exit"));
}

// The toolkit posts its request to quit, and an event loop that begins throws posted ones away: a box
// that opens in the same moment would leave the program running without a window.
void MainWindow::endWithTheLastWindow()
{
    connect(qApp, &QGuiApplication::lastWindowClosed, this, [this] {
        // Outside a loop there is nothing to end, and every later one would end at once.
        if (thread()->loopLevel() > 0) {
            QCoreApplication::exit(0);
        }
    });
}

void MainWindow::startEngine()
{
    engine = new FileFinderEngine(model, controller, nullptr);
    engineThread = new QThread;
    connect(this, SIGNAL(destroyed()), engineThread, SLOT(deleteLater()));
    connect(engineThread, SIGNAL(destroyed()), engine, SLOT(deleteLater()));
    // An object on a finished thread is never deleted later. The worker therefore hands the engine
    // to this thread as its last act, without a start that came too late: it would run here.
    connect(
        engineThread,
        &QThread::finished,
        engine,
        [worker = engine, guiThread = thread()] {
            QCoreApplication::removePostedEvents(worker, QEvent::MetaCall);
            worker->moveToThread(guiThread);
        },
        Qt::DirectConnection);
    engine->moveToThread(engineThread);
    engineThread->start(QThread::InheritPriority);
}

void MainWindow::setFittingSize()
{
    const int ratio = desktopPixelRatio();
    setMinimumSize(minimumWidthPixels / ratio, minimumHeightPixels / ratio);
    // A minimum that is set by hand goes before that of the layout, and at a ratio of 2 it is less
    // than the pages need: the window opens at a size at which nothing overlaps, counters included.
    const QSize roomForCounters(minimumWidthPixels, 0);
    resize(minimumSize().expandedTo(layout()->totalMinimumSize()).expandedTo(roomForCounters));
}

// The timer belongs to the window: one of the toolkit's own single shots would fire after the
// window has gone.
void MainWindow::postToEngine(const char *slot)
{
    auto *const timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, SIGNAL(timeout()), engine, slot);
    connect(timer, SIGNAL(timeout()), timer, SLOT(deleteLater()));
    timer->start(postDelayMilliseconds);
}

void MainWindow::onScanStart()
{
    scanRunning = true;
    postToEngine(SLOT(startFinder()));
    widgetAnalyzeWaiting->toDefaults();
    stackedWidget->setCurrentIndex(1);
}

void MainWindow::stopScan()
{
    postToEngine(SLOT(stopFinder()));
}

void MainWindow::setCurrentWidget(int index)
{
    stackedWidget->setCurrentIndex(index);
}

void MainWindow::showAboutDialog()
{
    auto *const about = new AboutWidget(nullptr);
    about->setAttribute(Qt::WA_DeleteOnClose);
    SideWindow::endWithProgram(about);
    about->show();
}

void MainWindow::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter(this).fillRect(0, 0, width(), height(), Qt::white);
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    // Desktops change their theme, and some put theirs in place only now.
    if (event->type() == QEvent::PaletteChange) {
        LightPalette::install();
    }
}

void MainWindow::onModelEvent(const ModelEvent *modelEvent)
{
    if (modelEvent->type == TypeFindDuplicatedFilesFinishedEvent) {
        scanRunning = false;
    } else if (modelEvent->type == TypeGetUpdateVersionEvent) {
        const auto *const update = static_cast<const GetUpdateVersionEvent *>(modelEvent);
        offerUpdate(update->version, QUrl(update->url));
    }
}

void MainWindow::offerUpdate(const QString &version, const QUrl &page)
{
    if (versionNumber(version) <= versionNumber(QString::fromLatin1(Product::version))) {
        return;
    }
    const auto answer =
        QMessageBox::question(this,
                              QStringLiteral("Updates"),
                              QStringLiteral("New version is avialable! Go to website?"),
                              QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        QDesktopServices::openUrl(page);
    }
}

void MainWindow::onMenuClicked(QAction *action)
{
    const QString text = action->text();
    if (text == QLatin1String("About")) {
        showAboutDialog();
    } else if (text == QLatin1String("Exit")) {
        QCoreApplication::exit(0);
    } else if (text == QLatin1String("Homepage")) {
        openInDesktop(Product::homepage);
    } else if (text == QLatin1String("Feedback")) {
        if (!QDesktopServices::openUrl(QUrl(QString::fromLatin1(Product::supportMail)))) {
            openInDesktop(Product::contactPage);
        }
    } else if (text == QLatin1String("Check Updates")) {
        // No action of the menu has this text; whoever adds one gets the check of the start.
        controller->checkUpdate();
    }
}
