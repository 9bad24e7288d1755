// SPDX-License-Identifier: MIT
// Pages through a results table of 2,000 photos, a page a second, as a user does who looks at them.
// Prints the longest pass of the event loop and what the icons hold of memory, each with its limit,
// and ends with 1 if a limit is exceeded. A busy machine shows.
//
//   bench_Paging [PAGES [MILLISECONDS A PAGE]]
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "bench/LoopPassTimer.h"
#include "bench/Photos.h"
#include "ui/results/DuplicatedFilesListWidget.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <malloc.h>

namespace
{
constexpr int photoCount = 2000;
constexpr int rowsInView = 36;
constexpr double nanosecondsAMillisecond = 1e6;
bool withinLimits = true;

void report(const char *what, double value, double limit, const char *unit)
{
    const bool isWithin = limit <= 0 || value <= limit;
    withinLimits = withinLimits && isWithin;
    std::printf("%-48s %10.2f %-6s", what, value, unit);
    if (limit > 0) {
        std::printf(" limit %8.0f%s", limit, isWithin ? "" : "  EXCEEDED");
    }
    std::printf("\n");
}

std::size_t heapBytes()
{
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

/** Lets the event loop run, and returns its longest pass in milliseconds. */
double longestPass(LoopPassTimer *application, int milliseconds)
{
    application->reset();
    QTimer::singleShot(milliseconds, application, SLOT(quit()));
    LoopPassTimer::exec();
    return double(application->longestNanoseconds()) / nanosecondsAMillisecond;
}
} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    LoopPassTimer application(argc, argv);
    const int pages = argc > 1 ? std::atoi(argv[1]) : 40;
    const int millisecondsAPage = argc > 2 ? std::atoi(argv[2]) : 1000;
    const QTemporaryDir folder;
    const QList<QStringList> groups = Photos::pairs(folder.path(), photoCount);

    MainWindow window;
    Model hub(nullptr);
    DuplicatedFilesListWidget page(&hub, &window);
    auto *const view = page.findChild<QTableView *>();
    const int rowHeight = view->verticalHeader()->defaultSectionSize();
    page.setGeometry(0, 0, 1000, rowsInView * rowHeight + 150);
    window.resize(1024, page.height());
    page.hide();
    window.show();
    longestPass(&application, 500);

    hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(groups));
    const std::size_t before = heapBytes();
    QTimer::singleShot(0, &page, [&page] {
        page.raise();
        page.show();
    });
    report("the first page", longestPass(&application, 3000), 0, "ms");
    std::printf("%d rows in view, %d pages, %d ms each\n",
                view->rowAt(view->viewport()->height() - 1) - view->rowAt(0) + 1,
                pages,
                millisecondsAPage);

    auto *const model = qobject_cast<DuplicatedFilesTableModel *>(view->model());
    const auto icons = [model] {
        int count = 0;
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, DuplicatedFilesTableModel::FilepathColumn);
            count += model->lacksIcon(index.data().toString()) ? 0 : 1;
        }
        return count;
    };
    std::vector<double> passes;
    int unprepared = 0;
    for (int i = 0; i < pages; ++i) {
        const int seen = view->rowAt(view->viewport()->height() - 1) + 1;
        unprepared += std::max(0, seen + rowsInView - icons());
        QTimer::singleShot(0, view, [view] {
            view->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
        });
        passes.push_back(longestPass(&application, millisecondsAPage));
    }
    std::sort(passes.begin(), passes.end());
    report("the longest pass of all pages", passes.back(), 50, "ms");
    report("that of a page, median", passes[passes.size() / 2], 0, "ms");

    // The last pages are prepared, and the decoders have let go of what they held.
    longestPass(&application, 3000);
    report("photos that were not prepared, a page", double(unprepared) / pages, 0, "");
    const double bytes = double(heapBytes() - before) / icons();
    report("memory of an icon", bytes, 8000, "bytes");
    report("that of the icons of 100,000 photos", bytes * 1e5 / (1 << 20), 0, "MiB");
    return withinLimits ? 0 : 1;
}
