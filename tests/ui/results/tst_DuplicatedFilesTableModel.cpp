// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QFont>
#include <QSignalSpy>

namespace
{
class Probe final : public DuplicatedFilesTableModel
{
public:
    using DuplicatedFilesTableModel::checkedRows;
    using DuplicatedFilesTableModel::createIndex;
    using DuplicatedFilesTableModel::filesByGroup;
    using DuplicatedFilesTableModel::iconCache;
    using DuplicatedFilesTableModel::maxCachedPixmapBytes;
    using DuplicatedFilesTableModel::pixmapCache;

    QVariant at(int row, int column, int role = Qt::DisplayRole) const
    {
        return data(index(row, column), role);
    }
    QStringList shown(int column) const
    {
        QStringList texts;
        for (int row = 0; row < rowCount(); ++row) {
            texts.append(at(row, column).toString());
        }
        return texts;
    }
};

QList<QStringList> twoGroups()
{
    return {{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/c")},
            {QStringLiteral("/d"), QStringLiteral("/e")}};
}

QString savePicture(const QString &path, int width, int height, Qt::GlobalColor color = Qt::blue)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return image.save(path, "PNG") ? path : QString();
}

const QVector<int> allRoles = {Qt::DisplayRole,
                               Qt::DecorationRole,
                               Qt::EditRole,
                               Qt::ToolTipRole,
                               Qt::StatusTipRole,
                               Qt::WhatsThisRole,
                               Qt::FontRole,
                               Qt::TextAlignmentRole,
                               Qt::BackgroundRole,
                               Qt::ForegroundRole,
                               Qt::CheckStateRole};
} // namespace

class tst_DuplicatedFilesTableModel final : public TestCase
{
    Q_OBJECT

private slots:
    void startsEmpty();
    void reversesEachGroupAndTicksAllButItsTopRow();
    void emptyGroupTakesANumber();
    void refillingReplacesRowsAndTicks();
    void hasFixedHeaders();
    void onlyTheFirstColumnIsCheckable();
    void answersNothingForBadIndexes();
    void answersNothingForOtherRoles();
    void showsGroupPathAndSize();
    void truncatesSizes_data();
    void truncatesSizes();
    void shadesEvenGroups();
    void aVanishedFileIsRedWithoutASignal();
    void togglingARowTwiceTakesItOut();
    void ignoresATickOnNoRow();
    void ticksAndUnticksAll();
    void everyChangeIsOneReset();
    void passesTheModelTester();
    void knowsPicturesByAPartOfTheirEnding_data();
    void knowsPicturesByAPartOfTheirEnding();
    void remembersPicturesAndFailures();
    void forgetsNothingButAnswersForTheDisk();
    void stopsRememberingAtItsLimit();
    void iconsAre32PixelsHigh();
    void iconsLeaveThePicturesAlone();
    void iconsOfAFailureAreRemembered();
    void fallsBackToTheFileIcon();
    void aPipeIsNoPicture();
    void describesAPictureInItsToolTip_data();
    void describesAPictureInItsToolTip();
    void toolTipFollowsTheFile();
    void knowsTheSizeOfADecorationWithoutDecoding();
};

void tst_DuplicatedFilesTableModel::startsEmpty()
{
    // A new model has no rows, no ticks and four columns.
    const Probe model;
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 4);
    QCOMPARE(model.selectedFiles(), QStringList());
}

void tst_DuplicatedFilesTableModel::reversesEachGroupAndTicksAllButItsTopRow()
{
    // Rows ascend by group and run backwards inside one; all but the top row of each are ticked.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    QCOMPARE(model.shown(2),
             QStringList({QStringLiteral("/c"),
                          QStringLiteral("/b"),
                          QStringLiteral("/a"),
                          QStringLiteral("/e"),
                          QStringLiteral("/d")}));
    QCOMPARE(model.shown(1).join(QString()), QStringLiteral("11122"));
    QCOMPARE(model.checkedRows, QVector<qint32>({1, 2, 4}));
    QCOMPARE(model.selectedFiles(),
             QStringList({QStringLiteral("/b"), QStringLiteral("/a"), QStringLiteral("/d")}));
    for (int row = 0; row < 5; ++row) {
        const bool ticked = model.checkedRows.contains(row);
        QCOMPARE(model.at(row, 0, Qt::CheckStateRole),
                 QVariant(ticked ? Qt::Checked : Qt::Unchecked));
    }
    QCOMPARE(model.filesByGroup.keys(), QList<qint32>({1, 1, 1, 2, 2}));
}

void tst_DuplicatedFilesTableModel::emptyGroupTakesANumber()
{
    // A group without files makes no row, but the next one is counted after it.
    Probe model;
    model.setDuplicatedFilesInList({{}, {QStringLiteral("/a"), QStringLiteral("/b")}});
    QCOMPARE(model.shown(1), QStringList({QStringLiteral("2"), QStringLiteral("2")}));
}

void tst_DuplicatedFilesTableModel::refillingReplacesRowsAndTicks()
{
    // Nothing of the last content is left but the pictures.
    Probe model;
    const QString picture = savePicture(path(QStringLiteral("a.png")), 10, 10);
    model.setDuplicatedFilesInList({{picture, QStringLiteral("/b")}});
    model.pixmapFromPath(picture);
    model.scaledPixmapToIcon(picture);
    model.setCheckStateAll(true);
    model.setDuplicatedFilesInList({{QStringLiteral("/x"), QStringLiteral("/y")}});
    QCOMPARE(model.shown(2), QStringList({QStringLiteral("/y"), QStringLiteral("/x")}));
    QCOMPARE(model.selectedFiles(), QStringList(QStringLiteral("/x")));
    QVERIFY(model.pixmapCache.contains(picture));
    QVERIFY(model.iconCache.contains(picture));
    model.setDuplicatedFilesInList({});
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.selectedFiles(), QStringList());
}

void tst_DuplicatedFilesTableModel::hasFixedHeaders()
{
    // The header texts are the same whatever the orientation; no other role has a value.
    const Probe model;
    for (const Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
        QCOMPARE(model.headerData(0, orientation), QVariant());
        QCOMPARE(model.headerData(1, orientation), QVariant(QStringLiteral("Group")));
        QCOMPARE(model.headerData(2, orientation), QVariant(QStringLiteral("Filepath")));
        QCOMPARE(model.headerData(3, orientation), QVariant(QStringLiteral("Size (kb)")));
        QCOMPARE(model.headerData(4, orientation), QVariant());
        QCOMPARE(model.headerData(1, orientation, Qt::TextAlignmentRole), QVariant());
    }
}

void tst_DuplicatedFilesTableModel::onlyTheFirstColumnIsCheckable()
{
    // Column 0 can be ticked, no other can, and an invalid index has no flags.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    const Qt::ItemFlags base = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    QCOMPARE(model.flags(model.index(0, 0)), base | Qt::ItemIsUserCheckable);
    for (int column = 1; column < 4; ++column) {
        QCOMPARE(model.flags(model.index(0, column)), base);
    }
    QCOMPARE(model.flags(QModelIndex()), Qt::ItemFlags());
}

void tst_DuplicatedFilesTableModel::answersNothingForBadIndexes()
{
    // Indexes of no row, and those kept over a refill, answer with an empty value.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    const QModelIndex last = model.index(4, 2);
    QVERIFY(model.data(last).isValid());
    model.setDuplicatedFilesInList({{QStringLiteral("/x"), QStringLiteral("/y")}});
    for (const int role : allRoles) {
        QVERIFY(!model.data(QModelIndex(), role).isValid());
        QVERIFY(!model.data(last, role).isValid());
        QVERIFY(!model.data(model.createIndex(2, 2), role).isValid());
        QVERIFY(!model.data(model.createIndex(-1, 2), role).isValid());
        QVERIFY(!model.data(model.createIndex(0, -1), role).isValid());
    }
}

void tst_DuplicatedFilesTableModel::answersNothingForOtherRoles()
{
    // Roles without a meaning here, and all above the check state, have no value in any column.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    for (int column = 0; column < 4; ++column) {
        for (const int role : {int(Qt::EditRole),
                               int(Qt::StatusTipRole),
                               int(Qt::WhatsThisRole),
                               int(Qt::ForegroundRole),
                               11,
                               int(Qt::SizeHintRole),
                               int(Qt::UserRole)}) {
            QVERIFY(!model.at(0, column, role).isValid());
        }
    }
}

void tst_DuplicatedFilesTableModel::showsGroupPathAndSize()
{
    // Each role has its value in its columns and none in the others.
    const TempTree tree(path(QString()));
    Probe model;
    const QString a = tree.file(QStringLiteral("a.txt"), QByteArray(5000, 'x'));
    model.setDuplicatedFilesInList({{QStringLiteral("/b"), a}});
    const QVariant group(QStringLiteral("1"));
    const QVariant size(QStringLiteral("4"));
    for (const int role : {int(Qt::DisplayRole), int(Qt::ToolTipRole)}) {
        QCOMPARE(model.at(0, 0, role), QVariant());
        QCOMPARE(model.at(0, 1, role), group);
        QCOMPARE(model.at(0, 2, role), QVariant(a));
        QCOMPARE(model.at(0, 3, role), size);
    }
    for (const int column : {0, 1, 3}) {
        QCOMPARE(model.at(0, column, Qt::TextAlignmentRole), QVariant(132));
        QCOMPARE(model.at(0, column, Qt::DecorationRole), QVariant());
    }
    QCOMPARE(model.at(0, 2, Qt::TextAlignmentRole), QVariant());
    QVERIFY(!model.at(0, 2, Qt::DecorationRole).value<QPixmap>().isNull());
    for (const int column : {1, 2, 3}) {
        QCOMPARE(model.at(0, column, Qt::CheckStateRole), QVariant());
    }
}

void tst_DuplicatedFilesTableModel::truncatesSizes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << qint64(0) << QStringLiteral("0");
    QTest::newRow("1023 bytes") << qint64(1023) << QStringLiteral("0");
    QTest::newRow("1024 bytes") << qint64(1024) << QStringLiteral("1");
    QTest::newRow("2047 bytes") << qint64(2047) << QStringLiteral("1");
    QTest::newRow("5 GiB") << (qint64(5) << 30) << QStringLiteral("5242880");
}

void tst_DuplicatedFilesTableModel::truncatesSizes()
{
    // Sizes are shown in whole kilobytes of 1024 bytes, cut off.
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    Probe model;
    model.setDuplicatedFilesInList(
        {{TempTree(path(QString())).sparseFile(QStringLiteral("x"), bytes)}});
    QCOMPARE(model.at(0, 3).toString(), text);
}

void tst_DuplicatedFilesTableModel::shadesEvenGroups()
{
    // Groups with an even number are bold on grey, the others have the view's own look.
    const TempTree tree(path(QString()));
    Probe model;
    model.setDuplicatedFilesInList(
        {{tree.file(QStringLiteral("a"))}, {tree.file(QStringLiteral("b"))}});
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(model.at(0, column, Qt::FontRole), QVariant());
        QCOMPARE(model.at(0, column, Qt::BackgroundRole), QVariant());
        QFont bold;
        bold.setWeight(QFont::Bold);
        QCOMPARE(model.at(1, column, Qt::FontRole), QVariant(bold));
        QCOMPARE(model.at(1, column, Qt::BackgroundRole).value<QColor>(),
                 QColor(QStringLiteral("#e9e9e4")));
    }
}

void tst_DuplicatedFilesTableModel::aVanishedFileIsRedWithoutASignal()
{
    // The colour follows the disk at each question, with no change to the rows.
    const TempTree tree(path(QString()));
    Probe model;
    const QString odd = tree.file(QStringLiteral("a"), QByteArray(3000, 'x'));
    const QString even = tree.file(QStringLiteral("b"));
    model.setDuplicatedFilesInList({{odd}, {even}});
    QCOMPARE(model.at(0, 3).toString(), QStringLiteral("2"));
    QVERIFY(!model.at(0, 1, Qt::BackgroundRole).isValid());
    const QSignalSpy resets(&model, SIGNAL(modelReset()));
    QVERIFY(QFile::remove(odd) && QFile::remove(even));
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 2; ++row) {
            QCOMPARE(model.at(row, column, Qt::BackgroundRole).value<QColor>(),
                     QColor(QStringLiteral("#ff6961")));
        }
    }
    QCOMPARE(model.shown(2), QStringList({odd, even}));
    QCOMPARE(model.at(0, 3).toString(), QStringLiteral("2"));
    tree.file(QStringLiteral("a"));
    QVERIFY(!model.at(0, 1, Qt::BackgroundRole).isValid());
    QCOMPARE(resets.count(), 0);
}

void tst_DuplicatedFilesTableModel::togglingARowTwiceTakesItOut()
{
    // A second toggle takes a row out; a row that is ticked later comes later in the list.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    model.setCheckState(model.index(1, 0));
    QCOMPARE(model.selectedFiles(), QStringList({QStringLiteral("/a"), QStringLiteral("/d")}));
    model.setCheckState(model.index(1, 0));
    QCOMPARE(model.selectedFiles(),
             QStringList({QStringLiteral("/a"), QStringLiteral("/d"), QStringLiteral("/b")}));
    model.setCheckState(model.index(0, 3));
    QCOMPARE(model.selectedFiles().last(), QStringLiteral("/c"));
    model.setCheckState(model.index(0, 3));
    QCOMPARE(model.checkedRows, QVector<qint32>({2, 4, 1}));
    QCOMPARE(model.at(0, 0, Qt::CheckStateRole), QVariant(Qt::Unchecked));
    QCOMPARE(model.at(1, 0, Qt::CheckStateRole), QVariant(Qt::Checked));
}

void tst_DuplicatedFilesTableModel::ignoresATickOnNoRow()
{
    // An index that belongs to no row changes nothing.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    model.setCheckState(QModelIndex());
    model.setCheckState(model.createIndex(5, 0));
    QCOMPARE(model.checkedRows, QVector<qint32>({1, 2, 4}));
}

void tst_DuplicatedFilesTableModel::ticksAndUnticksAll()
{
    // Ticking all takes the top rows, too, in the order of the rows; unticking clears every tick.
    Probe model;
    model.setDuplicatedFilesInList(twoGroups());
    model.setCheckStateAll(true);
    QCOMPARE(model.checkedRows, QVector<qint32>({0, 1, 2, 3, 4}));
    QCOMPARE(model.selectedFiles(), model.shown(2));
    QCOMPARE(model.at(0, 0, Qt::CheckStateRole), QVariant(Qt::Checked));
    model.setCheckStateAll(false);
    QCOMPARE(model.selectedFiles(), QStringList());
    QCOMPARE(model.at(1, 0, Qt::CheckStateRole), QVariant(Qt::Unchecked));
}

void tst_DuplicatedFilesTableModel::everyChangeIsOneReset()
{
    // Filling, ticking and updating reset the model once each, and signal nothing else.
    Probe model;
    const QSignalSpy begins(&model, SIGNAL(modelAboutToBeReset()));
    const QSignalSpy ends(&model, SIGNAL(modelReset()));
    const QSignalSpy changes(&model, SIGNAL(dataChanged(QModelIndex,QModelIndex,QVector<int>)));
    model.setDuplicatedFilesInList(twoGroups());
    QCOMPARE(ends.count(), 1);
    model.setCheckState(model.index(0, 0));
    QCOMPARE(ends.count(), 2);
    model.setCheckStateAll(true);
    QCOMPARE(ends.count(), 3);
    model.setCheckStateAll(false);
    QCOMPARE(ends.count(), 4);
    model.updateSortingList();
    QCOMPARE(ends.count(), 5);
    QCOMPARE(begins.count(), 5);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(model.rowCount(), 5);
}

void tst_DuplicatedFilesTableModel::passesTheModelTester()
{
    // The model keeps the toolkit's rules through fill, refill, ticks and files that vanish.
    const TempTree tree(path(QString()));
    Probe model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QString picture = savePicture(path(QStringLiteral("a.png")), 10, 10);
    model.setDuplicatedFilesInList({{picture, tree.file(QStringLiteral("b"))}});
    model.setCheckState(model.index(0, 0));
    model.setCheckStateAll(true);
    QVERIFY(QFile::remove(picture));
    model.updateSortingList();
    model.setDuplicatedFilesInList(twoGroups());
    model.setCheckStateAll(false);
    model.setDuplicatedFilesInList({});
    QCOMPARE(model.rowCount(model.createIndex(0, 0)), 0);
}

void tst_DuplicatedFilesTableModel::knowsPicturesByAPartOfTheirEnding_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isPicture");
    for (const char *name : {"a.bmp",
                             "a.gif",
                             "a.ico",
                             "a.jng",
                             "a.jpg",
                             "a.jpeg",
                             "a.png",
                             "a.PNG",
                             "a.jp",
                             "a.p",
                             "none",
                             "end.",
                             "a.b.png"}) {
        QTest::newRow(name) << QString::fromLatin1(name) << true;
    }
    for (const char *name : {"a.txt", "a.pngx", "a.ng", "a.tiff", "a.webp"}) {
        QTest::newRow(name) << QString::fromLatin1(name) << false;
    }
}

void tst_DuplicatedFilesTableModel::knowsPicturesByAPartOfTheirEnding()
{
    // Any beginning of a known ending counts, in any case; so does no ending at all.
    QFETCH(QString, name);
    QFETCH(bool, isPicture);
    const Probe model;
    const QString file = savePicture(path(name), 20, 10);
    QCOMPARE(model.pixmapFromPath(file).size(), isPicture ? QSize(20, 10) : QSize(0, 0));
    QCOMPARE(model.pixmapCache.contains(file), isPicture);
}

void tst_DuplicatedFilesTableModel::remembersPicturesAndFailures()
{
    // A picture is read once, and one that cannot be decoded is not tried again.
    const TempTree tree(path(QString()));
    const Probe model;
    const QString picture = savePicture(path(QStringLiteral("a.png")), 20, 10);
    const QString broken = tree.file(QStringLiteral("x.jp"), "no picture");
    QCOMPARE(model.pixmapFromPath(picture).size(), QSize(20, 10));
    QVERIFY(model.pixmapFromPath(broken).isNull());
    QVERIFY(model.pixmapCache.contains(broken));
    savePicture(picture, 5, 5);
    savePicture(broken, 5, 5);
    QCOMPARE(model.pixmapFromPath(picture).size(), QSize(20, 10));
    QVERIFY(model.pixmapFromPath(broken).isNull());
}

void tst_DuplicatedFilesTableModel::forgetsNothingButAnswersForTheDisk()
{
    // A file that is not there has no picture, remembered or not, and nothing is noted of it.
    const Probe model;
    const QString picture = savePicture(path(QStringLiteral("a.png")), 20, 10);
    QVERIFY(model.pixmapFromPath(path(QStringLiteral("b.png"))).isNull());
    QVERIFY(!model.pixmapCache.contains(path(QStringLiteral("b.png"))));
    model.pixmapFromPath(picture);
    QVERIFY(QFile::remove(picture));
    QVERIFY(model.pixmapFromPath(picture).isNull());
    QVERIFY(model.pixmapCache.contains(picture));
}

void tst_DuplicatedFilesTableModel::stopsRememberingAtItsLimit()
{
    // Past the limit a picture is decoded and let go; a failure costs nothing and is remembered.
    Probe model;
    QCOMPARE(model.maxCachedPixmapBytes, qint64(512) << 20);
    const QString first = savePicture(path(QStringLiteral("a.png")), 10, 10);
    const QString second = savePicture(path(QStringLiteral("b.png")), 10, 10);
    const QString third = savePicture(path(QStringLiteral("c.png")), 1, 1);
    const QString broken = TempTree(path(QString())).file(QStringLiteral("d.png"), "no picture");
    model.maxCachedPixmapBytes = 2 * 10 * 10 * model.pixmapFromPath(first).depth() / 8;
    model.pixmapFromPath(second);
    QCOMPARE(model.pixmapFromPath(third).size(), QSize(1, 1));
    QVERIFY(model.pixmapFromPath(broken).isNull());
    QCOMPARE(model.pixmapCache.size(), 3);
    QVERIFY(!model.pixmapCache.contains(third));
    QVERIFY(model.smallImageHtmlOrPath(third).startsWith(QStringLiteral("<img")));
}

void tst_DuplicatedFilesTableModel::iconsAre32PixelsHigh()
{
    // A thumbnail is 32 pixels high in the picture's proportions, made once and kept for good.
    Probe model;
    const QString picture = savePicture(path(QStringLiteral("a.png")), 400, 200, Qt::red);
    model.setDuplicatedFilesInList({{picture}});
    const auto icon = model.at(0, 2, Qt::DecorationRole).value<QPixmap>();
    QCOMPARE(icon.size(), QSize(64, 32));
    QCOMPARE(icon.toImage().pixelColor(30, 15), QColor(Qt::red));
    QCOMPARE(model.iconCache.value(picture).cacheKey(), icon.cacheKey());
    QVERIFY(QFile::remove(picture));
    QCOMPARE(model.scaledPixmapToIcon(picture).cacheKey(), icon.cacheKey());
}

void tst_DuplicatedFilesTableModel::iconsLeaveThePicturesAlone()
{
    // A thumbnail keeps no full-size picture, but is made of one that is there already.
    const Probe model;
    const QString first = savePicture(path(QStringLiteral("a.png")), 400, 200, Qt::red);
    const QString second = savePicture(path(QStringLiteral("b.png")), 400, 200, Qt::red);
    QCOMPARE(model.scaledPixmapToIcon(first).size(), QSize(64, 32));
    QVERIFY(model.pixmapCache.isEmpty());
    model.pixmapFromPath(second);
    savePicture(second, 100, 100, Qt::green);
    QCOMPARE(model.scaledPixmapToIcon(second).size(), QSize(64, 32));
    QCOMPARE(model.scaledPixmapToIcon(second).toImage().pixelColor(9, 9), QColor(Qt::red));
}

void tst_DuplicatedFilesTableModel::iconsOfAFailureAreRemembered()
{
    // No picture is remembered as none: as a thumbnail always, in full size if it was tried.
    const TempTree tree(path(QString()));
    const Probe model;
    const QString missing = path(QStringLiteral("missing.png"));
    const QString text = tree.file(QStringLiteral("a.txt"), "text");
    const QString broken = tree.file(QStringLiteral("b.png"), "no picture");
    const QString line = savePicture(path(QStringLiteral("line.png")), 2000, 1);
    for (const QString &file : {missing, text, broken, line}) {
        QVERIFY(model.scaledPixmapToIcon(file).isNull());
        QVERIFY(model.iconCache.contains(file));
    }
    QCOMPARE(model.pixmapCache.size(), 1);
    QVERIFY(model.pixmapCache.contains(broken));
    QCOMPARE(model.pixmapFromPath(line).size(), QSize(2000, 1));
    savePicture(missing, 10, 10);
    QVERIFY(model.scaledPixmapToIcon(missing).isNull());
}

void tst_DuplicatedFilesTableModel::fallsBackToTheFileIcon()
{
    // What cannot be decoded shows the icon of its kind, and its path as the tool tip.
    const TempTree tree(path(QString()));
    Probe model;
    const QString file = tree.file(QStringLiteral("x.jp"), "no picture");
    model.setDuplicatedFilesInList({{file}});
    const auto icon = model.at(0, 2, Qt::DecorationRole).value<QPixmap>();
    QVERIFY(!icon.isNull());
    QCOMPARE(icon.size(), model.iconForFile(file).size());
    QCOMPARE(icon.toImage(), model.iconForFile(file).toImage());
    QVERIFY(icon.height() <= 32 && icon.width() <= 32);
    QCOMPARE(model.at(0, 2, Qt::ToolTipRole), QVariant(file));
    QVERIFY(model.iconForFile(path(QStringLiteral("missing"))).isNull());
}

void tst_DuplicatedFilesTableModel::aPipeIsNoPicture()
{
    // A pipe with the name of a picture answers at once, by its path and the icon of its kind.
    Probe model;
    const QString pipe = TempTree(path(QString())).fifo(QStringLiteral("a.png"));
    model.setDuplicatedFilesInList({{pipe}});
    QVERIFY(model.scaledPixmapToIcon(pipe).isNull());
    QCOMPARE(model.at(0, 2, Qt::DecorationRole).value<QPixmap>().toImage(),
             model.iconForFile(pipe).toImage());
    QCOMPARE(model.at(0, 2, Qt::ToolTipRole), QVariant(pipe));
    QCOMPARE(model.decorationSize(model.index(0, 2)), QSize(32, 32));
}

void tst_DuplicatedFilesTableModel::describesAPictureInItsToolTip_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("small") << QSize(400, 300) << QSize(400, 300);
    QTest::newRow("just small enough") << QSize(500, 500) << QSize(500, 500);
    QTest::newRow("wide") << QSize(1000, 800) << QSize(500, 400);
    QTest::newRow("high") << QSize(800, 1000) << QSize(400, 500);
    QTest::newRow("square") << QSize(1000, 1000) << QSize(500, 500);
    QTest::newRow("wide by a pixel") << QSize(501, 500) << QSize(500, 499);
    QTest::newRow("wide to a fraction") << QSize(501, 333) << QSize(500, 332);
    QTest::newRow("high to a fraction") << QSize(640, 641) << QSize(499, 500);
    QTest::newRow("a strip") << QSize(777, 3) << QSize(500, 2);
    QTest::newRow("a line") << QSize(2000, 1) << QSize(500, 1);
}

void tst_DuplicatedFilesTableModel::describesAPictureInItsToolTip()
{
    // The tool tip shows the picture, at most 500 pixels on its longer side, by its bare path.
    QFETCH(QSize, size);
    QFETCH(QSize, shown);
    Probe model;
    const QString picture =
        savePicture(path(QStringLiteral("a&\"%1.png")), size.width(), size.height());
    model.setDuplicatedFilesInList({{picture}});
    const QString html = QStringLiteral("<img src = \"") + picture + QStringLiteral("\" height=")
        + QString::number(shown.height()) + QStringLiteral(" width=")
        + QString::number(shown.width()) + QStringLiteral(">");
    QCOMPARE(model.smallImageHtmlOrPath(picture), html);
    QCOMPARE(model.at(0, 2, Qt::ToolTipRole), QVariant(html));
    QVERIFY(model.pixmapCache.contains(picture));
}

void tst_DuplicatedFilesTableModel::toolTipFollowsTheFile()
{
    // The numbers are those of the file of now, even if another picture is remembered.
    const Probe model;
    const QString picture = savePicture(path(QStringLiteral("a.png")), 20, 10);
    model.pixmapFromPath(picture);
    savePicture(picture, 7, 9);
    QVERIFY(model.smallImageHtmlOrPath(picture).endsWith(QStringLiteral("height=9 width=7>")));
    TempTree(path(QString())).file(QStringLiteral("a.png"), "no picture");
    QVERIFY(model.smallImageHtmlOrPath(picture).endsWith(QStringLiteral("height=0 width=0>")));
}

void tst_DuplicatedFilesTableModel::knowsTheSizeOfADecorationWithoutDecoding()
{
    // The announced size is that of the icon that is shown later, and no picture is read for it.
    const TempTree tree(path(QString()));
    Probe model;
    const QString picture = savePicture(path(QStringLiteral("a.png")), 501, 333);
    const QString text = tree.file(QStringLiteral("a.txt"), "text");
    model.setDuplicatedFilesInList({{text, picture}});
    const QSize size = model.decorationSize(model.index(0, 2));
    QCOMPARE(model.decorationSize(model.index(1, 2)), QSize(32, 32));
    QVERIFY(model.iconCache.isEmpty() && model.pixmapCache.isEmpty());
    QCOMPARE(model.at(0, 2, Qt::DecorationRole).value<QPixmap>().size(), size);
    QCOMPARE(model.decorationSize(model.index(0, 2)), size);
    QVERIFY(!model.decorationSize(model.index(0, 1)).isValid());
    QVERIFY(!model.decorationSize(QModelIndex()).isValid());
}

TWINSIFT_TEST_MAIN(tst_DuplicatedFilesTableModel)
#include "tst_DuplicatedFilesTableModel.moc"
