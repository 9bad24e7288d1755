// SPDX-License-Identifier: MIT
#include "tools/tour/Tour.h"

#include "app/MainWindow.h"
#include "ui/results/PictureTip.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageReader>
#include <QPixmap>
#include <QScreen>
#include <QTableView>
#include <QTest>
#include <QTextStream>

#include <algorithm>

namespace
{
constexpr int stepMilliseconds = 120000;

const QString saveName = QStringLiteral("duplicates.txt");
const QString deleteWarning = QStringLiteral(
    "<b>Warning!<br><br>Deleting files may cause some applications to crash.<br></b><br>Before "
    "deleting, we recommend to you check the list of files to be deleted.");
} // namespace

Tour::Tour(MainWindow *mainWindow, const QString &toured, const QString &place, bool mayDelete)
    : window(mainWindow)
    , driver(mainWindow, &boxes)
    , folder(toured)
    , output(place)
    , deleting(mayDelete)
{
}

bool Tour::say(const QString &line) const
{
    QTextStream(stdout) << line << '\n';
    return true;
}

// The whole screen, as a box or a tool tip is a window of its own.
bool Tour::takePicture(const QString &name) const
{
    QTest::qWait(200); // for the server to have drawn the last change
    return window->screen()
        ->grabWindow(0, window->x(), window->y(), window->width(), window->height())
        .save(output.filePath(name + QStringLiteral(".png")));
}

QList<Tour::Step> Tour::steps()
{
    QList<Step> all = {
        {QStringLiteral("open the window"),
         [this] {
             return showWindow();
         }},
        {QStringLiteral("choose the folder and tick it"),
         [this] {
             return chooseFolder();
         }},
        {QStringLiteral("look at the file types"),
         [this] {
             return pickTypes();
         }},
        {QStringLiteral("pick the options"),
         [this] {
             return pickOptions();
         }},
        {QStringLiteral("scan"),
         [this] {
             return startScan();
         }},
        {QStringLiteral("open the results"),
         [this] {
             return openResults();
         }},
        {QStringLiteral("look at a picture"),
         [this] {
             return lookAtPicture();
         }},
        {QStringLiteral("save the list"),
         [this] {
             return saveList();
         }},
    };
    if (deleting) {
        all.append({QStringLiteral("move the ticked files to the Trash"), [this] {
                        return moveToTrash();
                    }});
    }
    all.append({QStringLiteral("come back"), [this] {
                    return comeBack();
                }});
    return all;
}

bool Tour::play()
{
    for (const Step &step : steps()) {
        say(step.text);
        QElapsedTimer timer;
        timer.start();
        bool done = step.act();
        if (done && !boxes.failures().isEmpty()) {
            done = false;
            problem = boxes.failures().join(QStringLiteral("; "));
        } else if (done && timer.hasExpired(stepMilliseconds)) {
            done = false;
            problem = QStringLiteral("took %1 ms").arg(timer.elapsed());
        }
        if (!done) {
            takePicture(QStringLiteral("failed"));
            const QString reason = problem.isEmpty() ? driver.problem() : problem;
            say(QStringLiteral("The tour failed: %1: %2 (%3)")
                    .arg(step.text, reason, output.filePath(QStringLiteral("failed.png"))));
            return false;
        }
    }
    summarise();
    return true;
}

bool Tour::showWindow()
{
    window->move(0, 0);
    window->show();
    return QTest::qWaitForWindowExposed(window) && takePicture(QStringLiteral("1-start"));
}

bool Tour::chooseFolder()
{
    return driver.chooseFolder(folder) && driver.tickFolder(folder)
        && takePicture(QStringLiteral("2-folder"));
}

bool Tour::pickTypes()
{
    if (!driver.click(QStringLiteral("Choose file types to include"))) {
        return false;
    }
    QWidget *types = nullptr;
    if (!QTest::qWaitFor(
            [&] { return (types = driver.otherWindow("FileTypesWidget")) != nullptr; })) {
        problem = QStringLiteral("the list of file types did not open");
        return false;
    }
    // Left by its frame, which changes nothing: entries that are chosen there end in a line feed, and
    // "Any File" would match no file any more.
    return types->grab().save(output.filePath(QStringLiteral("3-file-types.png")))
        && types->close();
}

bool Tour::pickOptions()
{
    return driver.click(QStringLiteral("Advanced Match"))
        && driver.click(QStringLiteral("SHA-1 Hash")) && takePicture(QStringLiteral("4-options"));
}

bool Tour::startScan()
{
    return driver.click(QStringLiteral("Start scan")) && driver.waitForPage(1)
        && driver.waitUntilShown(QStringLiteral("completed"))
        && takePicture(QStringLiteral("5-progress"));
}

bool Tour::openResults()
{
    if (!driver.click(QStringLiteral("Scan Results")) || !driver.waitForPage(2)) {
        return false;
    }
    const QStringList paths = driver.column(2);
    for (const QString &path : paths) {
        bytes += QFileInfo(path).size();
    }
    filesCount = static_cast<int>(paths.size());
    QStringList groups = driver.column(1);
    groups.removeDuplicates();
    groupsCount = static_cast<int>(groups.size());
    return takePicture(QStringLiteral("6-results"));
}

bool Tour::lookAtPicture()
{
    // Only an active window shows tool tips; the dialog of the first step had taken the focus.
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window)) {
        problem = QStringLiteral("the window does not get the focus");
        return false;
    }
    const QTableView *const table = driver.table();
    const QStringList paths = driver.column(2);
    for (int row = 0; row < paths.size(); ++row) {
        const QModelIndex index = table->model()->index(row, 2);
        const QRect place = table->visualRect(index);
        if (!QImageReader(paths.at(row)).canRead()
            || !table->viewport()->rect().contains(place.center())) {
            continue;
        }
        const QPoint point(place.left() + 60, place.center().y());
        QTest::mouseMove(table->viewport(), point - QPoint(5, 0));
        QTest::mouseMove(table->viewport(), point);
        const auto isTipVisible = [table] {
            const auto tips = table->findChildren<PictureTip *>();
            return std::any_of(tips.cbegin(), tips.cend(), [](const PictureTip *tip) {
                return tip->isVisible();
            });
        };
        if (!QTest::qWaitFor(isTipVisible)) {
            problem = QStringLiteral("no tool tip came up for %1").arg(paths.at(row));
            return false;
        }
        return takePicture(QStringLiteral("7-picture"));
    }
    return say(QStringLiteral("  (no picture among the rows on the screen)"));
}

bool Tour::saveList()
{
    const QString list = output.filePath(saveName);
    QFile::remove(list);
    boxes.expectFileDialog(QStringLiteral("Save File"), list);
    boxes.expectMessageBox(QStringLiteral("File saved"),
                           QStringLiteral("File saving complete!"),
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    return driver.click(QStringLiteral("Save List")) && QFileInfo::exists(list);
}

bool Tour::moveToTrash()
{
    boxes.expectMessageBox(QStringLiteral("Warning"),
                           deleteWarning,
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    boxes.expectMessageBox(QStringLiteral("Delete Duplicate Files"),
                           QStringLiteral("Start moving %1 duplicate files to trash. Are you sure?")
                               .arg(filesCount - groupsCount),
                           QMessageBox::Yes | QMessageBox::No,
                           QMessageBox::Yes);
    boxes.expectMessageBox(QStringLiteral("Complete!"),
                           QStringLiteral("Duplicated files was deleted!"),
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    return driver.click(QStringLiteral("Delete Selected Files"))
        && takePicture(QStringLiteral("8-after-deleting"));
}

bool Tour::comeBack()
{
    return driver.click(QStringLiteral("Scan Configuration")) && driver.waitForPage(0);
}

void Tour::summarise() const
{
    say(QStringLiteral("%1 groups of duplicates: %2 files, %3 bytes")
            .arg(groupsCount)
            .arg(filesCount)
            .arg(bytes));
    say(QStringLiteral("The pictures and the saved list are in %1").arg(output.absolutePath()));
}
