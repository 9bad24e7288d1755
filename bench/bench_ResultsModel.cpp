// SPDX-License-Identifier: MIT
// Measures the results table with many rows: what its answers, ticks and thumbnails cost. Prints one
// line a measurement with its limit, and ends with 1 if a limit is exceeded.
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "bench/Photos.h"
#include "ui/results/DuplicatedFilesListWidget.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QApplication>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <utility>

#include <malloc.h>

namespace
{
constexpr int probes = 20000;
bool withinLimits = true;

void report(const char *what, double value, double limit, const char *unit)
{
    withinLimits = withinLimits && value <= limit;
    std::printf("%-48s %10.2f %-10s limit %8.0f%s\n",
                what,
                value,
                unit,
                limit,
                value <= limit ? "" : "  EXCEEDED");
}

// Of the processor and on this thread: neither whatever else runs on the machine counts, nor what is
// prepared in the background.
double processorMilliseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double milliseconds(const std::function<void()> &work)
{
    const double start = processorMilliseconds();
    work();
    return processorMilliseconds() - start;
}

// Groups of three and four; the paths are as long as those of a photo collection.
QList<QStringList> manyGroups(int rows, int groups)
{
    QList<QStringList> list;
    for (int group = 0, row = 0; group < groups; ++group) {
        QStringList paths;
        for (const int end = int(qint64(rows) * (group + 1) / groups); row < end; ++row) {
            paths.append(
                QStringLiteral("/home/somebody/Pictures/2021/Summer/IMG_%1.txt").arg(row, 8));
        }
        list.append(paths);
    }
    return list;
}

double millisecondsOfAnswers(const DuplicatedFilesTableModel &model)
{
    QRandomGenerator random(1);
    return milliseconds([&] {
        for (int i = 0; i < probes; ++i) {
            const int row = random.bounded(model.rowCount());
            model.data(model.index(row, DuplicatedFilesTableModel::GroupColumn));
            model.data(model.index(row, DuplicatedFilesTableModel::FilepathColumn));
            model.data(model.index(row, DuplicatedFilesTableModel::CheckColumn),
                       Qt::CheckStateRole);
            model.data(model.index(row, DuplicatedFilesTableModel::CheckColumn), Qt::FontRole);
        }
    });
}

void measureAnswers()
{
    DuplicatedFilesTableModel small;
    small.setDuplicatedFilesInList(manyGroups(1000, 300));
    DuplicatedFilesTableModel large;
    large.setDuplicatedFilesInList(manyGroups(1000000, 300000));
    millisecondsOfAnswers(small);
    millisecondsOfAnswers(large);
    const double smallTime = millisecondsOfAnswers(small);
    const double largeTime = millisecondsOfAnswers(large);
    // Memory that no longer fits the processor's caches is slower to reach, whatever is done.
    report("answers of 1,000,000 rows by those of 1,000", largeTime / smallTime, 10, "times");
    report("four answers about a row of 1,000,000", largeTime * 1000 / probes, 20, "us");

    const auto millisecondsOfOne = [](const DuplicatedFilesTableModel &model) {
        return milliseconds([&] { model.selectedFiles(); })
            / static_cast<double>(model.selectedFiles().size());
    };
    const double few = millisecondsOfOne(small);
    const double many = millisecondsOfOne(large);
    report("a selected file of 1,000,000 by one of 1,000", many / few, 30, "times");
    report("a selected file of 1,000,000", many * 1000, 5, "us");
}

void measureFillingAndTicks()
{
    constexpr int rows = 200000;
    const QList<QStringList> groups = manyGroups(rows, 60000);
    QTableView view;
    DuplicatedFilesTableModel model;
    view.setModel(&model);
    view.resize(900, 600);
    view.show();
    QApplication::processEvents();

    const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const double fill = milliseconds([&] {
        model.setDuplicatedFilesInList(groups);
        QApplication::processEvents();
    });
    const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
    report("filling 200,000 rows in 60,000 groups", fill, 1000, "ms");
    report("memory of a row, without its path", double(after - before) / rows, 700, "bytes");

    const auto measure = [](const char *what, const std::function<void()> &change) {
        report(what,
               milliseconds([&] {
                   change();
                   QApplication::processEvents();
               }),
               50,
               "ms");
    };
    measure("ticking all", [&] { model.setCheckStateAll(true); });
    measure("one tick among them off", [&] { model.setCheckState(model.index(0, 0)); });
    measure("one tick among them on", [&] { model.setCheckState(model.index(0, 0)); });
    measure("unticking all", [&] { model.setCheckStateAll(false); });
}

void measurePage()
{
    const QTemporaryDir folder;
    const QList<QStringList> groups = Photos::pairs(folder.path(), 10000);
    MainWindow window;
    Model hub(nullptr);
    DuplicatedFilesListWidget page(&hub, &window);
    page.setGeometry(0, 0, 900, 600);
    window.resize(1000, 700);
    window.show();
    page.hide();
    QApplication::processEvents();
    const double filled =
        milliseconds([&] { hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(groups)); });
    const double shown = milliseconds([&] {
        page.raise();
        page.show();
        page.grab();
    });
    report("opening the page of 10,000 photos", filled + shown, 1000, "ms");

    const auto *const view = page.findChild<QTableView *>();
    QScrollBar *const bar = view->verticalScrollBar();
    constexpr int steps = 100;
    const auto scroll = [&](int direction) {
        double longest = 0;
        const double total = milliseconds([&] {
            for (int i = 0; i < steps; ++i) {
                longest = std::max(longest, milliseconds([&] {
                                       bar->setValue(bar->value() + direction * view->rowHeight(0));
                                       QApplication::processEvents();
                                   }));
            }
        });
        return std::make_pair(total / steps, longest);
    };
    const auto down = scroll(1);
    const auto up = scroll(-1);
    report("a photo that comes into view", down.first, 25, "ms");
    report("the slowest of a hundred", down.second, 50, "ms");
    report("one that has been there before", up.first, 10, "ms");
}
} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    measureAnswers();
    measureFillingAndTicks();
    measurePage();
    return withinLimits ? 0 : 1;
}
