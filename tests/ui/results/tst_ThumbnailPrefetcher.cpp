// SPDX-License-Identifier: MIT
#include "tests/support/OpenWatch.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/ThumbnailPrefetcher.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>

namespace
{
constexpr int rowCount = 200;

class Probe final : public DuplicatedFilesTableModel
{
public:
    using DuplicatedFilesTableModel::iconCache;
    using DuplicatedFilesTableModel::maxCachedIconBytes;
    using DuplicatedFilesTableModel::pixmapCache;

    QString pathOfRow(int row) const { return index(row, FilepathColumn).data().toString(); }
    bool hasIcon(int row) const { return iconCache.contains(pathOfRow(row)); }
};

/** A table of files on the screen, with ten rows in view. */
class Table final
{
public:
    explicit Table(const QStringList &files)
    {
        QList<QStringList> groups;
        for (const QString &file : files) {
            groups.append({file});
        }
        model.setDuplicatedFilesInList(groups);
        view.setModel(&model);
        view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        view.horizontalHeader()->hide();
        view.resize(800, 10 * view.rowHeight(0) + 2 * view.frameWidth() - 1);
    }
    void show()
    {
        view.show();
        view.grab();
    }
    int first() const { return view.rowAt(0); }
    int last() const { return view.rowAt(view.viewport()->height() - 1); }

    Probe model;
    QTableView view;
    ThumbnailPrefetcher *prefetcher = new ThumbnailPrefetcher(&view, &model);
};
} // namespace

class tst_ThumbnailPrefetcher final : public TestCase
{
    Q_OBJECT

private slots:
    void choosesTheRowsThatComeNext_data();
    void choosesTheRowsThatComeNext();
    void preparesTheNextPages();
    void followsTheScrolling();
    void preparesNothingTwice();
    void preparesWhatTheModelWouldShow();
    void preparesNothingOutOfSight();
    void startsAnewWithOtherRows();
    void opensNoPipe();
    void remembersWhatCannotBeDecoded();
    void leavesToTheModelWhatItAlreadyHas();
    void stopsWhereNothingMoreIsRemembered();
    void takesNothingAfterTheModelHasGone();

private:
    QStringList pictures() const
    {
        QStringList files;
        const QString original = path(QStringLiteral("original.png"));
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::green);
        image.save(original);
        for (int i = 0; i < rowCount; ++i) {
            files.append(path(QStringLiteral("%1.png").arg(i)));
            if (!QFile::copy(original, files.last())) {
                qFatal("cannot copy a picture");
            }
        }
        return files;
    }
};

void tst_ThumbnailPrefetcher::choosesTheRowsThatComeNext_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<bool>("isDownwards");
    QTest::addColumn<int>("count");
    QTest::addColumn<QVector<int>>("rows");
    using Rows = QVector<int>;
    QTest::newRow("downwards") << 10 << 11 << true << 100 << Rows({12, 13, 14, 15, 16, 17, 9, 8});
    QTest::newRow("upwards") << 10 << 11 << false << 100 << Rows({9, 8, 7, 6, 5, 4, 12, 13});
    QTest::newRow("at the top") << 0 << 1 << false << 100 << Rows({2, 3, 4, 5, 6, 7});
    QTest::newRow("at the end") << 98 << 99 << true << 100 << Rows({97, 96, 95, 94, 93, 92});
    QTest::newRow("near the end") << 95 << 96 << true << 100 << Rows({97, 98, 99, 94, 93});
    QTest::newRow("all in view") << 0 << 4 << true << 5 << Rows();
}

void tst_ThumbnailPrefetcher::choosesTheRowsThatComeNext()
{
    // Three pages ahead, the nearest row first, then one behind; never a row that is not there.
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(bool, isDownwards);
    QFETCH(int, count);
    QFETCH(QVector<int>, rows);
    QCOMPARE(ThumbnailPrefetcher::rowsToPrepare(first, last, isDownwards, count), rows);
    QCOMPARE(ThumbnailPrefetcher::rowsToPrepare(5000, 9000, isDownwards, 1000000).size(),
             ThumbnailPrefetcher::maxRows);
}

void tst_ThumbnailPrefetcher::preparesTheNextPages()
{
    // The icons of the next three pages are there without a question, and those of no further row.
    Table table(pictures());
    table.show();
    const int page = table.last() + 1;
    QCOMPARE(page, 10);
    QTRY_COMPARE(table.model.iconCache.size(), 4 * page);
    for (int row = 0; row < rowCount; ++row) {
        QCOMPARE(table.model.hasIcon(row), row < 4 * page);
    }
}

void tst_ThumbnailPrefetcher::followsTheScrolling()
{
    // After a jump the rows around the place are prepared; scrolling up turns to the rows above.
    Table table(pictures());
    table.show();
    QTRY_COMPARE(table.model.iconCache.size(), 40);
    QScrollBar *const bar = table.view.verticalScrollBar();
    bar->setValue(100 * table.view.rowHeight(0));
    table.view.grab();
    QCOMPARE(table.first(), 100);
    QTRY_COMPARE(table.model.iconCache.size(), 40 + 10 + 30 + 10);
    QVERIFY(table.model.hasIcon(139) && !table.model.hasIcon(140));
    QVERIFY(table.model.hasIcon(90) && !table.model.hasIcon(89));
    bar->setValue(99 * table.view.rowHeight(0));
    QTRY_VERIFY(table.model.hasIcon(69));
    QVERIFY(!table.model.hasIcon(68) && !table.model.hasIcon(140));
}

void tst_ThumbnailPrefetcher::preparesNothingTwice()
{
    // A row that is prepared is not read again when the next one is.
    const QStringList files = pictures();
    Table table(files);
    table.show();
    QTRY_COMPARE(table.model.iconCache.size(), 40);
    const OpenWatch watch(files.at(15));
    table.view.verticalScrollBar()->setValue(table.view.rowHeight(0));
    QTRY_VERIFY(table.model.hasIcon(40));
    QVERIFY(!watch.wasOpened());
}

void tst_ThumbnailPrefetcher::preparesWhatTheModelWouldShow()
{
    // A prepared icon is the one that the model makes when it is asked first.
    Table table(pictures());
    const QAbstractItemModelTester tester(&table.model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    table.show();
    QTRY_VERIFY(table.model.hasIcon(15));
    const QString file = table.model.pathOfRow(15);
    const DuplicatedFilesTableModel other;
    QCOMPARE(table.model.iconCache.value(file).toImage(), other.scaledPixmapToIcon(file).toImage());
    QVERIFY(table.model.pixmapCache.isEmpty());
}

void tst_ThumbnailPrefetcher::preparesNothingOutOfSight()
{
    // As long as the table is not shown nothing is decoded.
    const QStringList files = pictures();
    Table hidden(files);
    hidden.model.updateSortingList();
    Table shown(files);
    shown.show();
    QTRY_COMPARE(shown.model.iconCache.size(), 40);
    QVERIFY(hidden.model.iconCache.isEmpty());
    hidden.show();
    QTRY_VERIFY(hidden.model.hasIcon(15));
}

void tst_ThumbnailPrefetcher::startsAnewWithOtherRows()
{
    // The next scan's rows are prepared from the top, whatever had been scrolled before.
    const QStringList files = pictures();
    const auto groups = [&files](int from) {
        QList<QStringList> list;
        for (const QString &file : files.mid(from, 60)) {
            list.append({file});
        }
        return list;
    };
    Table table(files.mid(0, 60));
    table.show();
    QTRY_VERIFY(table.model.hasIcon(39));
    table.model.setDuplicatedFilesInList(groups(60));
    QTRY_VERIFY(table.model.hasIcon(39));
    table.view.grab();
    table.view.verticalScrollBar()->setValue(30 * table.view.rowHeight(0));
    QTRY_VERIFY(table.model.hasIcon(59));
    table.model.setDuplicatedFilesInList(groups(120));
    table.view.scrollToTop();
    table.view.grab();
    QTRY_VERIFY(table.model.hasIcon(39));
}

void tst_ThumbnailPrefetcher::opensNoPipe()
{
    // A pipe with the name of a picture is not opened, and does not stop what comes after it.
    QStringList files = pictures();
    const TempTree tree(path(QString()));
    QVERIFY(QFile::remove(files.at(12)) && QFile::remove(files.at(13)));
    const QString pipe = tree.fifo(QStringLiteral("12.png"));
    const OpenWatch watch(pipe);
    Table table(files);
    table.show();
    QTRY_VERIFY(table.model.hasIcon(39));
    QTRY_VERIFY(table.model.hasIcon(12));
    QVERIFY(table.model.iconCache.value(pipe).isNull());
    // What is not there is left to the model, which looks again.
    QVERIFY(!table.model.hasIcon(13));
    QVERIFY(!watch.wasOpened());
}

void tst_ThumbnailPrefetcher::remembersWhatCannotBeDecoded()
{
    // A broken picture is found out beforehand, and not tried again when it comes into view.
    QStringList files = pictures();
    TempTree(path(QString())).file(QStringLiteral("14.png"), "no picture");
    Table table(files);
    table.show();
    QTRY_VERIFY(table.model.hasIcon(14));
    QVERIFY(QFile::remove(files.at(14)));
    QVERIFY(QFile::copy(files.at(15), files.at(14)));
    QVERIFY(table.model.scaledPixmapToIcon(files.at(14)).isNull());
}

void tst_ThumbnailPrefetcher::leavesToTheModelWhatItAlreadyHas()
{
    // What the model has decoded in the meantime stays, and what it has in full size is not read.
    const QStringList files = pictures();
    Table table(files);
    const QPixmap icon = table.model.scaledPixmapToIcon(files.at(12));
    table.model.takeIcon(files.at(12), QImage(32, 32, QImage::Format_RGB32));
    QCOMPARE(table.model.iconCache.value(files.at(12)).cacheKey(), icon.cacheKey());
    table.model.pixmapFromPath(files.at(13));
    table.show();
    QTRY_VERIFY(table.model.hasIcon(39));
    QVERIFY(!table.model.hasIcon(13));
}

void tst_ThumbnailPrefetcher::stopsWhereNothingMoreIsRemembered()
{
    // Past its limit the model remembers no icon, prepared or asked for, but answers as before.
    const QStringList files = pictures();
    Table table(files);
    QCOMPARE(table.model.maxCachedIconBytes, qint64(512) << 20);
    table.model.maxCachedIconBytes =
        qint64(15) * 43 * 32 * table.model.scaledPixmapToIcon(files.at(0)).depth() / 8;
    table.show();
    QTRY_COMPARE(table.model.iconCache.size(), 15);
    QCOMPARE(table.model.scaledPixmapToIcon(files.at(100)).size(), QSize(43, 32));
    QCOMPARE(table.model.iconCache.size(), 15);
    QVERIFY(!table.model.lacksIcon(files.at(101)));
}

void tst_ThumbnailPrefetcher::takesNothingAfterTheModelHasGone()
{
    // A model or a view that goes while pictures are under way leaves nothing behind.
    const QStringList files = pictures();
    for (int i = 0; i < 20; ++i) {
        Table table(files);
        table.show();
        QCoreApplication::processEvents();
    }
    QTableView view;
    auto *const model = new Probe;
    model->setDuplicatedFilesInList({files});
    view.setModel(model);
    new ThumbnailPrefetcher(&view, model);
    view.show();
    QCoreApplication::processEvents();
    delete model;
    view.resize(300, 300);
    QCoreApplication::processEvents();
}

TWINSIFT_TEST_MAIN(tst_ThumbnailPrefetcher)
#include "tst_ThumbnailPrefetcher.moc"
