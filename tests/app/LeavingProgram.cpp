// SPDX-License-Identifier: MIT
#include "tests/app/LeavingProgram.h"

#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/Configuration.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace
{
constexpr int pollMilliseconds = 2;
constexpr int maxWaitMilliseconds = 40000;
constexpr int statusOfFailure = 3;
const char option[] = "--leave";

enum Argument : int { Mode = 2, Way, Delay, DialogName, Opening, FirstFolder };

struct Dialog {
    const char *name;
    const char *title;
    bool isOnResults;

    bool is(const char *other) const { return qstrcmp(name, other) == 0; }
};

constexpr Dialog allDialogs[] = {{"about", "About TwinSift", false},
                                 {"file types", "File Types", false},
                                 {"mask editor", "Edit Mask", false},
                                 {"update", "Updates", false},
                                 {"question of a stop", "Question", false},
                                 {"folder", "Choose Directory", false},
                                 {"warning of a deletion", "Warning", true},
                                 {"question of a deletion", "Delete Duplicate Files", true},
                                 {"end of a deletion", "Complete!", true},
                                 {"save", "Save File", true}};

Dialog dialogCalled(const QString &name)
{
    for (const Dialog &dialog : allDialogs) {
        if (name == QLatin1String(dialog.name)) {
            return dialog;
        }
    }
    return {nullptr, nullptr, false};
}

ScanProfile profileOf(const QString &mode)
{
    ScanProfile profile;
    profile.includeMasks = QStringList(QStringLiteral("*.*"));
    profile.advancedMatch = mode != QLatin1String("bytes");
    profile.matchByteByByte = !profile.advancedMatch;
    profile.md5Hash = mode == QLatin1String("md5");
    profile.crcHash = mode == QLatin1String("crc");
    return profile;
}

QWidget *visibleWindow(const QString &title)
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->windowTitle() == title) {
            return widget;
        }
    }
    return nullptr;
}

void chooseInMenu(const MainWindow &window, const QString &text)
{
    const QList<QMenu *> menus = window.menuBar()->findChildren<QMenu *>();
    for (QAction *const action : menus.constFirst()->actions()) {
        if (action->text() == text) {
            action->trigger();
        }
    }
}

void giveUp(const QString &problem)
{
    std::fprintf(stderr, "%s\n", qPrintable(problem));
    QCoreApplication::exit(statusOfFailure);
}

void after(int milliseconds, QObject *context, const std::function<void()> &act)
{
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, context, act);
}

/** Opens a dialog in the window and leaves the program in it. */
class Leaver final : public QObject
{
public:
    Leaver(MainWindow *mainWindow, const QStringList &arguments)
        : window(mainWindow)
        , driver(mainWindow, nullptr)
        , way(arguments.at(Way))
        , delay(arguments.at(Delay).toInt())
        , dialog(dialogCalled(arguments.at(DialogName)))
    {
    }

    void begin(int opening)
    {
        if (dialog.name == nullptr) {
            after(delay, window, [this] { leave(); });
            return;
        }
        connect(&poll, &QTimer::timeout, this, [this] { look(); });
        after(maxWaitMilliseconds, this, [this] {
            giveUp(QStringLiteral("\"%1\" did not come, or leaving did not end").arg(title()));
        });
        after(opening, window, [this] { open(); });
    }

private:
    QString title() const { return QString::fromLatin1(dialog.title); }

    void open()
    {
        if (dialog.isOnResults
            && !QTest::qWaitFor([this] { return !window->isScanRunning(); }, maxWaitMilliseconds)) {
            return giveUp(QStringLiteral("the scan did not end"));
        }
        // Before the dialog: many of them do not return until they are answered.
        poll.start(pollMilliseconds);
        if (!(dialog.isOnResults ? openOnResults() : openInScan())) {
            giveUp(driver.problem());
        }
    }

    bool openInScan()
    {
        if (dialog.is("about")) {
            chooseInMenu(*window, QStringLiteral("About"));
            return true;
        }
        if (dialog.is("update")) {
            window->findChild<Model *>()->emitModelEvent(
                GetUpdateVersionEvent(QStringLiteral("9.9.9"),
                                      QStringLiteral("."),
                                      QStringLiteral("https://a.example/")));
            return true;
        }
        if (dialog.is("question of a stop")) {
            return driver.click(QStringLiteral("Stop Searching"));
        }
        // The way back is open until the first event of a scan.
        window->setCurrentWidget(0);
        if (dialog.is("folder")) {
            return driver.click(QStringLiteral("Select folder..."));
        }
        return driver.click(QStringLiteral("Choose file types to include"))
            && (dialog.is("file types")
                || WindowDriver::clickIn(driver.otherWindow("FileTypesWidget"),
                                         QStringLiteral("Add")));
    }

    bool openOnResults()
    {
        if (dialog.is("save")) {
            return driver.click(QStringLiteral("Scan Results"))
                && driver.click(QStringLiteral("Save List"));
        }
        return driver.click(QStringLiteral("Scan Results"))
            && driver.click(QStringLiteral("Select All"))
            && driver.click(QStringLiteral("Delete Selected Files"));
    }

    void look()
    {
        if (visibleWindow(title()) != nullptr) {
            poll.stop();
            after(delay, window, [this] { leave(); });
        } else if (auto *const box =
                       qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            // One that comes before the dialog.
            const auto yes =
                box->standardButtons() & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
            QTest::mouseClick(box->button(yes), Qt::LeftButton);
        }
    }

    void leave()
    {
        QWidget *const open = dialog.name == nullptr ? nullptr : visibleWindow(title());
        if (dialog.name != nullptr && open == nullptr) {
            return giveUp(QStringLiteral("\"%1\" has gone").arg(title()));
        }
        if (way == QLatin1String("quit")) {
            QCoreApplication::quit();
            return;
        }
        if (open != nullptr && open->isModal()) {
            answer(open);
        }
        if (way == QLatin1String("close")) {
            window->close();
        } else {
            chooseInMenu(*window, QStringLiteral("Exit"));
        }
    }

    void answer(QWidget *open) const
    {
        const auto *const box = qobject_cast<QMessageBox *>(open);
        if (box == nullptr) {
            QTest::keyClick(open, Qt::Key_Escape);
            return;
        }
        const auto wanted = dialog.is("question of a stop") ? QMessageBox::Yes : QMessageBox::No;
        QAbstractButton *const button = box->button(wanted);
        QTest::mouseClick(button != nullptr ? button : box->button(QMessageBox::Ok),
                          Qt::LeftButton);
    }

    MainWindow *window;
    WindowDriver driver;
    QString way;
    int delay;
    Dialog dialog;
    QTimer poll;
};
} // namespace

QStringList LeavingProgram::ways()
{
    return {QStringLiteral("close"), QStringLiteral("exit"), QStringLiteral("quit")};
}

QStringList LeavingProgram::dialogs()
{
    QStringList names;
    for (const Dialog &dialog : allDialogs) {
        names.append(QString::fromLatin1(dialog.name));
    }
    return names;
}

bool LeavingProgram::isOnResults(const QString &dialog)
{
    return dialogCalled(dialog).isOnResults;
}

QStringList LeavingProgram::arguments(const QString &mode,
                                      const QString &way,
                                      int delay,
                                      const QStringList &folders)
{
    return arguments(mode, way, delay, QStringLiteral("none"), 0, folders);
}

QStringList LeavingProgram::arguments(const QString &mode,
                                      const QString &way,
                                      int delay,
                                      const QString &dialog,
                                      int opening,
                                      const QStringList &folders)
{
    return QStringList{QString::fromLatin1(option),
                       mode,
                       way,
                       QString::number(delay),
                       dialog,
                       QString::number(opening)}
    + folders;
}

bool LeavingProgram::isAsked(int argc, char **argv)
{
    return argc > FirstFolder && qstrcmp(argv[1], option) == 0;
}

int LeavingProgram::run(int argc, char **argv)
{
    TestSurroundings::prepare();
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    MainWindow window;
    window.show();
    Leaver leaver(&window, arguments);
    Configuration::instance()->folders = arguments.mid(FirstFolder);
    Configuration::instance()->scanProfile = profileOf(arguments.at(Mode));
    window.onScanStart();
    leaver.begin(arguments.at(Opening).toInt());
    return QApplication::exec();
}
