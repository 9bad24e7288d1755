// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/FilepathDelegate.h"
#include "ui/results/PictureTip.h"
#include "ui/results/ToolTipText.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QScreen>
#include <QScrollBar>
#include <QTableView>
#include <QTextDocument>
#include <QToolTip>

namespace
{
const QSize viewSize(800, 300);

bool savePicture(const QString &path, Qt::GlobalColor color, const QSize &size = QSize(64, 48))
{
    QDir().mkpath(QFileInfo(path).path());
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image.save(path, "PNG");
}

// Announces more pixels than are ever decoded.
QByteArray hugePng()
{
    return QByteArray::fromHex("89504e470d0a1a0a0000000d49484452"
                               "00009c4000007530"
                               "080200000043747757"
                               "0000100049444154")
        + QByteArray(32, '\0');
}

/** A table of files, and a mouse that rests on its paths. */
class Rests final
{
public:
    explicit Rests(const QStringList &files)
    {
        QList<QStringList> groups;
        for (const QString &file : files) {
            groups.append({file});
        }
        model.setDuplicatedFilesInList(groups);
        view.setModel(&model);
        view.setItemDelegateForColumn(2, new FilepathDelegate(&view));
        view.resize(viewSize);
        view.show();
        isReady = QTest::qWaitForWindowActive(&view);
    }
    ~Rests()
    {
        PictureTip::hideTip();
        QToolTip::hideText();
    }

    QPoint place(int row) const
    {
        const QRect cell = view.visualRect(model.index(row, 2));
        return {cell.left() + 20, cell.center().y()};
    }
    void restOn(int row)
    {
        QVERIFY(isReady);
        const QPoint point = place(row);
        QHelpEvent event(QEvent::ToolTip, point, view.viewport()->mapToGlobal(point));
        QApplication::sendEvent(view.viewport(), &event);
    }
    PictureTip *tip() const
    {
        for (auto *const tip : view.findChildren<PictureTip *>()) {
            if (tip->isVisible()) {
                return tip;
            }
        }
        return nullptr;
    }
    // Null where no picture is shown.
    QImage shown() const
    {
        const PictureTip *const label = tip();
        return label != nullptr ? label->pixmap(Qt::ReturnByValue).toImage() : QImage();
    }

    DuplicatedFilesTableModel model;
    QTableView view;
    bool isReady = false;
};
} // namespace

class tst_PictureTip final : public TestCase
{
    Q_OBJECT

private slots:
    void showsTheRowsOwnFile_data();
    void showsTheRowsOwnFile();
    void showsThePathOfWhatIsNoPicture();
    void followsTheFile();
    void doesNotWaitForWhatTookItsPlace();
    void isAtMost500PixelsOnItsLongerSide();
    void liesOnTheScreen();
    void goesWithTheMouse_data();
    void goesWithTheMouse();
    void goesWithItsView();
    void givesWayToAText();
    void textNamesNothing_data();
    void textNamesNothing();
};

void tst_PictureTip::showsTheRowsOwnFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("other");
    const auto row = [](const char *tag, const QString &name, const QString &other) {
        QTest::newRow(tag) << name << other;
    };
    row("a plain name", QStringLiteral("photo.png"), QString());
    row("an escaped space", QStringLiteral("my%20photo.png"), QStringLiteral("my photo.png"));
    row("a hash", QStringLiteral("photo#1.png"), QStringLiteral("photo"));
    row("a question mark", QStringLiteral("photo?1.png"), QStringLiteral("photo"));
    row("an ampersand", QStringLiteral("a&amp;b.png"), QStringLiteral("a&b.png"));
    row("a quote", QStringLiteral("a\".png"), QStringLiteral("a"));
    row("an apostrophe", QStringLiteral("a'.png"), QStringLiteral("a"));
    row("a tag", QStringLiteral("a\"><img src=\"b.png"), QStringLiteral("b.png"));
    row("a line break", QStringLiteral("a\nb.png"), QStringLiteral("a b.png"));
    row("two spaces", QStringLiteral("a  b.png"), QStringLiteral("a b.png"));
    row("a resource", QStringLiteral(":/content/logo.png"), QString());
    row("a web address", QStringLiteral("http:/host/a.png"), QString());
    row("a local address", QStringLiteral("file:/a.png"), QString());
    row("a place marker", QStringLiteral("%1.png"), QStringLiteral("%2.png"));
    row("a ratio", QStringLiteral("a@2x.png"), QStringLiteral("a.png"));
    row("a further ratio", QStringLiteral("a.png"), QStringLiteral("a@2x.png"));
}

void tst_PictureTip::showsTheRowsOwnFile()
{
    // Whatever a name reads like, the picture that is shown is the one in the row's own file.
    QFETCH(QString, name);
    QFETCH(QString, other);
    const QString file = path(QStringLiteral("folder/") + name);
    QVERIFY(savePicture(file, Qt::green));
    if (!other.isEmpty()) {
        QVERIFY(savePicture(path(QStringLiteral("folder/") + other), Qt::red));
    }
    QVERIFY(QDir::setCurrent(path(QStringLiteral("folder"))));
    Rests rests({file});
    rests.restOn(0);
    const QImage shown = rests.shown();
    QCOMPARE(shown.size(), QSize(64, 48));
    QCOMPARE(shown.pixelColor(10, 10), QColor(Qt::green));
    QVERIFY(!QToolTip::isVisible());
    // What the model answers names the file, and is a text as before.
    QCOMPARE(rests.model.data(rests.model.index(0, 2), Qt::ToolTipRole).toString(),
             QStringLiteral("<img src = \"") + file + QStringLiteral("\" height=48 width=64>"));
}

void tst_PictureTip::showsThePathOfWhatIsNoPicture()
{
    // A path that reads as an address or a resource of the program is shown as it is.
    for (const QString &name :
         {QStringLiteral(":/content/logo.png"), QStringLiteral(":/content/icon.png")}) {
        QVERIFY(QFile::exists(QStringLiteral(":/content/logo.png")));
        Rests rests({name});
        rests.restOn(0);
        QVERIFY(rests.shown().isNull());
        QCOMPARE(QToolTip::text(), name);
    }
}

void tst_PictureTip::followsTheFile()
{
    // The mouse rests, another picture takes the file's place, and the next rest shows that one.
    const QString file = path(QStringLiteral("a.png"));
    QVERIFY(savePicture(file, Qt::green));
    Rests rests({file});
    rests.restOn(0);
    QCOMPARE(rests.shown().pixelColor(10, 10), QColor(Qt::green));
    QVERIFY(savePicture(file, Qt::red, QSize(20, 20)));
    rests.restOn(0);
    QCOMPARE(rests.shown().size(), QSize(20, 20));
    QCOMPARE(rests.shown().pixelColor(10, 10), QColor(Qt::red));
}

void tst_PictureTip::doesNotWaitForWhatTookItsPlace()
{
    // The mouse rests, and rests again after the file became a pipe, a huge picture, a text or none.
    const QString file = path(QStringLiteral("a.png"));
    const TempTree tree(path(QString()));
    const QVector<std::function<void()>> swaps = {
        [&] { tree.fifo(QStringLiteral("a.png")); },
        [&] { tree.file(QStringLiteral("a.png"), hugePng()); },
        [&] { tree.file(QStringLiteral("a.png"), "text"); },
        [] {},
    };
    for (const auto &swap : swaps) {
        QFile::remove(file);
        QVERIFY(savePicture(file, Qt::green));
        Rests rests({file});
        rests.restOn(0);
        QVERIFY(!rests.shown().isNull());
        QVERIFY(QFile::remove(file));
        swap();
        QElapsedTimer timer;
        timer.start();
        rests.restOn(0);
        QVERIFY(timer.elapsed() < 1000);
        QVERIFY(rests.shown().isNull());
        QCOMPARE(QToolTip::text(), file);
    }
}

void tst_PictureTip::isAtMost500PixelsOnItsLongerSide()
{
    // A large picture is shown as large as the model says.
    const QString file = path(QStringLiteral("a.png"));
    QVERIFY(savePicture(file, Qt::green, QSize(1000, 800)));
    Rests rests({file});
    rests.restOn(0);
    const QPixmap pixmap = rests.tip()->pixmap(Qt::ReturnByValue);
    QCOMPARE(pixmap.size() / pixmap.devicePixelRatio(), QSize(500, 400));
    QVERIFY(rests.tip()->width() >= 500 && rests.tip()->width() < 520);
}

void tst_PictureTip::liesOnTheScreen()
{
    // Beside the cursor, and on the screen wherever the cursor is.
    const QString file = path(QStringLiteral("a.png"));
    QVERIFY(savePicture(file, Qt::green, QSize(500, 400)));
    Rests rests({file});
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    rests.restOn(0);
    QCOMPARE(rests.tip()->pos(),
             rests.view.viewport()->mapToGlobal(rests.place(0)) + QPoint(2, 16));
    for (const QPoint &corner :
         {screen.topLeft(), screen.topRight(), screen.bottomLeft(), screen.bottomRight()}) {
        QVERIFY(PictureTip::showFile(file, corner, rests.view.viewport(), QRect(0, 0, 9, 9)));
        QVERIFY(screen.contains(rests.tip()->geometry()));
    }
}

void tst_PictureTip::goesWithTheMouse_data()
{
    QTest::addColumn<QString>("step");
    for (const char *step : {"to another row", "away", "click", "wheel", "key"}) {
        QTest::newRow(step) << QString::fromLatin1(step);
    }
}

void tst_PictureTip::goesWithTheMouse()
{
    // A tip is gone when the mouse has left its row, and when anything is clicked, turned or typed.
    QFETCH(QString, step);
    const QString file = path(QStringLiteral("a.png"));
    QVERIFY(savePicture(file, Qt::green));
    Rests rests({file, path(QStringLiteral("b.txt"))});
    QWidget *const viewport = rests.view.viewport();
    rests.restOn(0);
    QTest::mouseMove(viewport, rests.place(0) + QPoint(3, 0));
    QVERIFY(rests.tip() != nullptr);
    if (step == QStringLiteral("to another row")) {
        QTest::mouseMove(viewport, rests.place(1));
    } else if (step == QStringLiteral("away")) {
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(viewport, &leave);
    } else if (step == QStringLiteral("click")) {
        QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, rests.place(0));
    } else if (step == QStringLiteral("key")) {
        QTest::keyClick(&rests.view, Qt::Key_Down);
    } else {
        const QPointF at(rests.place(0));
        QWheelEvent wheel(at,
                          viewport->mapToGlobal(rests.place(0)),
                          QPoint(),
                          QPoint(0, -120),
                          Qt::NoButton,
                          Qt::NoModifier,
                          Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(viewport, &wheel);
    }
    QTRY_VERIFY(rests.view.findChildren<PictureTip *>().isEmpty());
}

void tst_PictureTip::goesWithItsView()
{
    // A view that goes takes its tip along, and the next one shows its own.
    const QString file = path(QStringLiteral("a.png"));
    QVERIFY(savePicture(file, Qt::green));
    {
        Rests rests({file});
        rests.restOn(0);
        QVERIFY(rests.tip() != nullptr);
    }
    Rests rests({file});
    rests.restOn(0);
    QVERIFY(rests.tip() != nullptr);
}

void tst_PictureTip::givesWayToAText()
{
    // There is one tip at a time, of a picture or of a path.
    const QString file = path(QStringLiteral("a.png"));
    const QString text = TempTree(path(QString())).file(QStringLiteral("b.txt"));
    QVERIFY(savePicture(file, Qt::green));
    Rests rests({file, text});
    rests.restOn(0);
    QVERIFY(rests.tip() != nullptr);
    rests.restOn(1);
    QVERIFY(rests.tip() == nullptr);
    QCOMPARE(QToolTip::text(), text);
    rests.restOn(0);
    QVERIFY(rests.tip() != nullptr);
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_PictureTip::textNamesNothing_data()
{
    QTest::addColumn<QString>("path");
    for (const char *name : {"/a/plain.png",
                             "/a/<b>x.png",
                             "/a/<img src=\":/content/logo.png\">",
                             "/a/\"><img src='/etc/passwd'>.png",
                             "<img src=http://host/a.png>",
                             "/a/  two  <b>spaces",
                             "/a/line\nbreak<b>",
                             "/a/<b>break at the end\n",
                             "/a/<b>more\n\n\nbreaks",
                             "/a/%1<b>%2",
                             "/a/&lt;b&gt;",
                             "/a/&lt;b&gt;<i>"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void tst_PictureTip::textNamesNothing()
{
    // A path is shown letter by letter, and nothing that it names is looked for.
    class Document final : public QTextDocument
    {
    public:
        QStringList wanted;

    protected:
        QVariant loadResource(int, const QUrl &name) override
        {
            wanted.append(name.toString());
            return {};
        }
    };
    const QString name = QString::fromUtf8(QTest::currentDataTag());
    const QString text = ToolTipText::ofPath(name);
    Document document;
    if (Qt::mightBeRichText(text)) {
        document.setHtml(text);
    } else {
        document.setPlainText(text);
    }
    document.setTextWidth(300);
    document.documentLayout();
    document.size();
    QCOMPARE(document.wanted, QStringList());
    QCOMPARE(document.toPlainText(), name);
}

TWINSIFT_TEST_MAIN(tst_PictureTip)
#include "tst_PictureTip.moc"
