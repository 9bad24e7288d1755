// SPDX-License-Identifier: MIT
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/config/FileSystemTreeModel.h"
#include "ui/config/FileSystemTreeWidget.h"

#include <QPushButton>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

namespace
{
constexpr int loadMilliseconds = 120000;
constexpr double clickMilliseconds = 50;
constexpr double expansionMilliseconds = 100;
// Four times the folders cost sixteen times the time where something is quadratic; a linear cost
// grows a little more than fourfold, because the larger tree leaves the processor's cache.
constexpr double ratioOfFourTimesTheFolders = 12;
// Below this a measurement is noise, and no base for a ratio.
constexpr double leastMilliseconds = 1;

// Processor time: what others do on the machine does not count.
double fastest(int repetitions,
               const std::function<void()> &prepare,
               const std::function<void()> &step)
{
    double best = 1e9;
    for (int i = 0; i < repetitions; ++i) {
        prepare();
        const std::clock_t start = std::clock();
        step();
        best = std::min(best, 1000.0 * double(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

/** A shown tree of parents with ten folders each (one of them their own row), all expanded. */
class ShownTree final
{
public:
    ShownTree(const TempTree &tree, int parents);

    QTreeView *view() const { return widget.findChild<QTreeView *>(); }
    FileSystemTreeModel *model() const
    {
        return qobject_cast<FileSystemTreeModel *>(view()->model());
    }
    QModelIndex root() const { return model()->index(rootPath); }
    QModelIndex parent(int row) const { return model()->index(row, 0, root()); }
    bool load();
    /** Brings the folder into view and returns where its check box is. */
    QPoint boxOf(const QModelIndex &index) const;
    void click(const QPoint &position) const;

    FileSystemTreeWidget widget{nullptr};

private:
    QString rootPath;
    int count = 0;
};

constexpr int childrenOfEach = 9;

ShownTree::ShownTree(const TempTree &tree, int parents)
    : rootPath(tree.folder(QStringLiteral("of%1").arg(parents)))
    , count(parents)
{
    for (int i = 0; i < parents; ++i) {
        for (int j = 0; j < childrenOfEach; ++j) {
            tree.folder(QStringLiteral("of%1/folder%2/child%3").arg(parents).arg(i).arg(j));
        }
    }
    widget.resize(600, 700);
    widget.show();
}

bool ShownTree::load()
{
    ModalDriver modals;
    modals.expectFileDialog(QStringLiteral("Choose Directory"), rootPath);
    QTest::mouseClick(widget.findChild<QPushButton *>(), Qt::LeftButton);
    if (!modals.failures().isEmpty()
        || !QTest::qWaitFor([this] { return model()->rowCount(root()) == count; },
                            loadMilliseconds)) {
        return false;
    }
    for (int row = 0; row < count; ++row) {
        model()->fetchMore(parent(row));
    }
    const auto isLoaded = [this] {
        for (int row = 0; row < count; ++row) {
            if (model()->rowCount(parent(row)) != childrenOfEach) {
                return false;
            }
        }
        return true;
    };
    if (!QTest::qWaitFor(isLoaded, loadMilliseconds)) {
        return false;
    }
    for (int row = 0; row < count; ++row) {
        view()->expand(parent(row));
    }
    // What is still to be sorted and laid out belongs to the loading.
    QCoreApplication::processEvents();
    return true;
}

QPoint ShownTree::boxOf(const QModelIndex &index) const
{
    view()->scrollTo(index);
    QStyleOptionViewItem option;
    option.initFrom(view());
    option.widget = view();
    option.rect = view()->visualRect(index);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    return view()
        ->style()
        ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view())
        .center();
}

void ShownTree::click(const QPoint &position) const
{
    QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier, position);
}
} // namespace

class bench_FolderTree final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void answersInTime_data();
    void answersInTime();

private:
    QHash<QString, double> ofQuarter;
};

void bench_FolderTree::init()
{
    TestCase::init();
    allowMessages(QRegularExpression(QStringLiteral("^QPixmap::scale")));
}

void bench_FolderTree::answersInTime_data()
{
    QTest::addColumn<int>("parents");
    QTest::newRow("5000 folders, 500 expanded") << 500;
    QTest::newRow("20000 folders, 2000 expanded") << 2000;
}

void bench_FolderTree::answersInTime()
{
    // Ticks and expansions stay below their limits, and grow no faster than the tree.
    QFETCH(int, parents);
    const TempTree tree(path(QStringLiteral("tree")));
    ShownTree shown(tree, parents);
    QVERIFY(QTest::qWaitForWindowExposed(&shown.widget));
    QVERIFY(shown.load());
    // An even number: each toggled folder ends as it was.
    const int repetitions = 12;
    QHash<QString, double> times;
    const auto nothing = [] {
    };
    const QPoint boxOfRoot = shown.boxOf(shown.root());
    times.insert(QStringLiteral("tick everything"),
                 fastest(repetitions, nothing, [&] { shown.click(boxOfRoot); }));
    QCOMPARE(shown.widget.selectedFolders().size(), 0);
    shown.click(boxOfRoot);
    QCOMPARE(shown.widget.selectedFolders().size(), 1);
    // Every parent partial, with many ticks of their own: the longest list of folders.
    shown.model()->setData(shown.root(), Qt::Unchecked, Qt::CheckStateRole);
    for (int row = 0; row < parents; ++row) {
        for (int child = 1; child < childrenOfEach; ++child) {
            shown.model()->setData(shown.model()->index(child, 0, shown.parent(row)),
                                   Qt::Checked,
                                   Qt::CheckStateRole);
        }
    }
    const QModelIndex last = shown.parent(parents - 1);
    const QPoint boxOfLast = shown.boxOf(shown.model()->index(0, 0, last));
    times.insert(QStringLiteral("tick one among many"),
                 fastest(repetitions, nothing, [&] { shown.click(boxOfLast); }));
    QCOMPARE(shown.widget.selectedFolders().size(), parents * (childrenOfEach - 1));
    const auto collapse = [&] {
        shown.view()->collapse(last);
    };
    times.insert(QStringLiteral("expand one"),
                 fastest(repetitions, collapse, [&] { shown.view()->expand(last); }));
    for (auto time = times.cbegin(); time != times.cend(); ++time) {
        std::printf("%5d folders: %s takes %.1f ms\n",
                    parents * 10,
                    qPrintable(time.key()),
                    time.value());
    }
    QVERIFY(times.value(QStringLiteral("tick everything")) < clickMilliseconds);
    QVERIFY(times.value(QStringLiteral("tick one among many")) < clickMilliseconds);
    QVERIFY(times.value(QStringLiteral("expand one")) < expansionMilliseconds);
    for (auto time = ofQuarter.cbegin(); time != ofQuarter.cend(); ++time) {
        const double base = std::max(time.value(), leastMilliseconds);
        QVERIFY2(times.value(time.key()) < base * ratioOfFourTimesTheFolders,
                 qPrintable(time.key()));
    }
    ofQuarter = times;
}

TWINSIFT_TEST_MAIN(bench_FolderTree)
#include "bench_FolderTree.moc"
