// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/FilepathDelegate.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStringListModel>
#include <QTableView>
#include <QTextLayout>
#include <QToolTip>

namespace
{
class Probe final : public DuplicatedFilesTableModel
{
public:
    using DuplicatedFilesTableModel::iconCache;
    using DuplicatedFilesTableModel::pixmapCache;
};

QString savePicture(const QString &path, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::blue);
    return image.save(path, "PNG") ? path : QString();
}

class SizedView final : public QTableView
{
public:
    using QTableView::sizeHintForColumn;
};
} // namespace

class tst_FilepathDelegate final : public TestCase
{
    Q_OBJECT

private slots:
    void sizesAColumnWithoutDecoding();
    void isAsWideAsWhatIsPainted();
    void leavesOtherModelsToTheToolkit();
    void showsThePathAsItReads();
    void readsFromTheSlash();
    void namesOfAllDirections_data();
    void namesOfAllDirections();
    void namesThatTurnTheirDirection_data();
    void namesThatTurnTheirDirection();
};

void tst_FilepathDelegate::sizesAColumnWithoutDecoding()
{
    // Many rows of pictures are measured, and none of them is decoded for it.
    Probe model;
    QStringList group;
    for (int i = 0; i < 1200; ++i) {
        group.append(path(QStringLiteral("%1.png").arg(i)));
        QVERIFY(!savePicture(group.last(), 60, 30).isEmpty());
    }
    model.setDuplicatedFilesInList({group});
    SizedView view;
    view.setModel(&model);
    view.setItemDelegateForColumn(2, new FilepathDelegate(&view));
    const int textWidth = view.fontMetrics().horizontalAdvance(group.first());
    QVERIFY(view.sizeHintForColumn(2) > textWidth + 64);
    QVERIFY(model.iconCache.isEmpty());
    QVERIFY(model.pixmapCache.isEmpty());
}

void tst_FilepathDelegate::isAsWideAsWhatIsPainted()
{
    // A measured row is as wide as the toolkit makes it, in plain and in bold.
    const TempTree tree(path(QString()));
    Probe model;
    const QString wide = savePicture(path(QStringLiteral("wide.png")), 300, 100);
    const QString narrow = savePicture(path(QStringLiteral("narrow.png")), 100, 300);
    const QString text = tree.file(QStringLiteral("file.txt"), "text");
    model.setDuplicatedFilesInList({{wide, narrow, text}, {text, narrow, wide}});
    QTableView view;
    const FilepathDelegate delegate(nullptr);
    const QStyledItemDelegate toolkits;
    QStyleOptionViewItem option;
    option.initFrom(&view);
    option.widget = &view;
    option.font = view.font();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, 2);
        const QSize size = delegate.sizeHint(option, index);
        QCOMPARE(size.width(), toolkits.sizeHint(option, index).width());
    }
}

void tst_FilepathDelegate::leavesOtherModelsToTheToolkit()
{
    // Rows of any other model are measured as the toolkit does.
    const QStringListModel model({QStringLiteral("text")});
    const FilepathDelegate delegate(nullptr);
    const QStyledItemDelegate toolkits;
    const QStyleOptionViewItem option;
    QCOMPARE(delegate.sizeHint(option, model.index(0)), toolkits.sizeHint(option, model.index(0)));
}

void tst_FilepathDelegate::showsThePathAsItReads()
{
    // Resting the mouse on a row shows the tool tip; where there is no row there is none.
    const TempTree tree(path(QString()));
    Probe model;
    const QString markup = tree.file(QStringLiteral("<b>x.txt"));
    const QString plain = tree.file(QStringLiteral("y.txt"));
    model.setDuplicatedFilesInList({{plain, markup}});
    QTableView view;
    view.setModel(&model);
    view.setItemDelegateForColumn(2, new FilepathDelegate(&view));
    view.resize(800, 300);
    view.show();
    const auto rest = [&view](const QPoint &point) {
        QHelpEvent event(QEvent::ToolTip, point, view.viewport()->mapToGlobal(point));
        QApplication::sendEvent(view.viewport(), &event);
        return event.isAccepted();
    };
    QVERIFY(rest(view.visualRect(model.index(0, 2)).center()));
    QVERIFY(QToolTip::text().contains(QStringLiteral("&lt;b&gt;x.txt")));
    QVERIFY(rest(view.visualRect(model.index(1, 2)).center()));
    QCOMPARE(QToolTip::text(), plain);
    QVERIFY(rest(view.visualRect(model.index(1, 1)).center()));
    QCOMPARE(QToolTip::text(), QStringLiteral("1"));
    QVERIFY(!rest(QPoint(20, 290)));
    QToolTip::hideText();
}

void tst_FilepathDelegate::readsFromTheSlash()
{
    // A path looks the same in a window that reads from the right.
    QStringListModel model({QStringLiteral("/home/somebody/file.txt")});
    const FilepathDelegate delegate(nullptr);
    const auto picture = [&](Qt::LayoutDirection direction) {
        QImage image(300, 30, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        QStyleOptionViewItem option;
        option.rect = image.rect();
        option.direction = direction;
        option.palette = QGuiApplication::palette();
        delegate.paint(&painter, option, model.index(0));
        return image;
    };
    QVERIFY(picture(Qt::LeftToRight) != QImage(300, 30, QImage::Format_RGB32));
    QCOMPARE(picture(Qt::RightToLeft), picture(Qt::LeftToRight));
}

void tst_FilepathDelegate::namesOfAllDirections_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("Latin") << QStringLiteral("/one/two/three");
    QTest::newRow("Hebrew") << QString::fromUtf8("/\u05D0\u05D1/\u05D2\u05D3/\u05D4.jpg");
    QTest::newRow("Arabic between Latin") << QString::fromUtf8("/home/\u0627\u0628/\u062A/x.png");
    QTest::newRow("Hebrew and numbers") << QString::fromUtf8("/\u05D0/2024/11/\u05D1");
}

void tst_FilepathDelegate::namesOfAllDirections()
{
    // Each folder stands to the right of the one that holds it.
    QFETCH(QString, path);
    const FilepathDelegate delegate(nullptr);
    const QString text = delegate.displayText(path, QLocale());
    QTextLayout layout(text);
    QTextOption option;
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    qreal right = 0; // of the folder before
    int begin = 1;
    for (const QString &name : path.mid(1).split(QLatin1Char('/'))) {
        begin = static_cast<int>(text.indexOf(name, begin));
        QVERIFY(begin > 0);
        qreal rightmost = right;
        for (int i = begin; i < begin + name.size(); ++i) {
            const qreal x = line.cursorToX(i);
            QVERIFY2(x > right, qPrintable(name));
            rightmost = qMax(rightmost, x);
        }
        right = rightmost;
    }
}

void tst_FilepathDelegate::namesThatTurnTheirDirection_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << QStringLiteral("/a/b.txt") << QStringLiteral("/a/b.txt");
    QTest::newRow("accents") << QString::fromUtf8("/\u00E4/b.txt")
                             << QString::fromUtf8("/\u00E4/b.txt");
    for (const int code : {0x061C, 0x200E, 0x200F, 0x202A, 0x202E, 0x2066, 0x2069}) {
        QTest::addRow("%x", code) << QStringLiteral("holiday%1gpj.exe").arg(QChar(code))
                                  << QString::fromUtf8("holiday\uFFFDgpj.exe");
    }
}

void tst_FilepathDelegate::namesThatTurnTheirDirection()
{
    // A program must not read as a picture. What the model answers is the path itself.
    QFETCH(QString, path);
    QFETCH(QString, shown);
    const FilepathDelegate delegate(nullptr);
    QCOMPARE(delegate.displayText(path, QLocale()), shown);
}

TWINSIFT_TEST_MAIN(tst_FilepathDelegate)
#include "tst_FilepathDelegate.moc"
