// SPDX-License-Identifier: MIT
#include "tests/support/RestrictedRights.h"
#include "tests/support/SmallFiles.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Toolkit.h"
#include "tests/ui/results/ResultsPage.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMap>
#include <QMenu>
#include <QPushButton>
#include <QScopeGuard>
#include <QTableView>

namespace
{
/** Notes the events of one type each that widgets get. */
class EventRecorder final : public QObject
{
public:
    explicit EventRecorder(const QMap<QWidget *, QEvent::Type> &widgets)
        : watchedTypes(widgets)
    {
        for (auto widget = widgets.begin(); widget != widgets.end(); ++widget) {
            widget.key()->installEventFilter(this);
        }
    }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watchedTypes.value(qobject_cast<QWidget *>(watched)) == event->type()) {
            seen.append(event->type());
        }
        return QObject::eventFilter(watched, event);
    }
    QList<QEvent::Type> types() const { return seen; }

private:
    QMap<QWidget *, QEvent::Type> watchedTypes;
    QList<QEvent::Type> seen;
};
} // namespace

/** What the results page does to files: the list, the trash, and deleting for good. */
class tst_ResultsActions final : public TestCase
{
    Q_OBJECT

private slots:
    void asksBeforeMovingToTheTrash();
    void movesTheTickedFilesToTheTrash();
    void aFileThatCannotBeMovedDoesNotStopTheRest();
    void nothingTickedIsCompleteAtOnce();
    void closesTheWayBackWhileItMoves();
    void closingTheQuestionIsNo();
    void deletesTheCurrentFileForGood();
    void keepsTheCurrentFileOnNo();
    void menuOutlivesTheBoxThatItOpens();
    void showsAFileNameAsItReads();
    void savesEveryRow();
    void savesFromTheMenu();
    void substitutesOneFieldAfterTheOther();
    void writesInTheLocalEncoding();
    void asksForATextFileInTheHomeFolder();
    void cancellingSavesNothing();
    void staysSilentWhereItCannotWrite_data();
    void staysSilentWhereItCannotWrite();
    void leavesAPipeAlone();
    void savesUnderANameOfAnyLength_data();
    void savesUnderANameOfAnyLength();
    void replacesTheOldList();
    void writesAFileInAClosedFolder();
    void keepsTheOldListIfTheNewOneIsCutShort_data();
    void keepsTheOldListIfTheNewOneIsCutShort();
    void keepsTheOldListInAClosedFolderIfTheNewOneIsCutShort();
    void leavesAFolderAlone();
    void savesAnEmptyList();

private:
    QString trashed(const QString &name) const
    {
        return homeTrash() + QStringLiteral("/files/") + name;
    }
    // The dialog asks whether to overwrite the file before it returns, so the driver must be free.
    static void expectOverwriting(ResultsPage *results, const QString &file)
    {
        results->boxes.expect(
            QStringLiteral("Save File"),
            [](QWidget *widget) {
                return qobject_cast<QFileDialog *>(widget) != nullptr ? QString()
                                                                      : QStringLiteral("no dialog");
            },
            [file](QWidget *widget) {
                auto *const edit = widget->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
                edit->setText(file);
                QMetaObject::invokeMethod(
                    edit,
                    [edit] { QTest::keyClick(edit, Qt::Key_Return); },
                    Qt::QueuedConnection);
            });
        results->boxes.expect(
            QStringLiteral("overwriting"),
            [](QWidget *box) {
                return qobject_cast<QMessageBox *>(box) != nullptr ? QString()
                                                                   : QStringLiteral("no question");
            },
            [](QWidget *box) {
                QTest::mouseClick(qobject_cast<QMessageBox *>(box)->button(QMessageBox::Yes),
                                  Qt::LeftButton);
            });
    }
    // Its list has more than 20,000 bytes.
    static QStringList longGroup()
    {
        QStringList group;
        for (int i = 0; i < 2000; ++i) {
            group.append(QStringLiteral("/some/long/path/to/a/file/number/%1").arg(i));
        }
        return group;
    }
    void save(ResultsPage *results, const QString &file, bool isSaved)
    {
        results->boxes.expectFileDialog(QStringLiteral("Save File"), file);
        if (isSaved) {
            results->expectFileSaved();
        }
        results->press(QStringLiteral("Save List"));
        QCOMPARE(results->boxes.failures(), QStringList());
    }
};

void tst_ResultsActions::asksBeforeMovingToTheTrash()
{
    // A warning and a question with the number of files come first; on No nothing happens.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString a = tree.file(QStringLiteral("a"));
    results.scanned({{a, tree.file(QStringLiteral("b")), tree.file(QStringLiteral("c"))}});
    results.expectDeletion(2, QMessageBox::No);
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(QFileInfo::exists(a));
    QVERIFY(!QFileInfo::exists(trashed(QStringLiteral("a"))));
}

void tst_ResultsActions::movesTheTickedFilesToTheTrash()
{
    // The ticked files are in the trash, the others in their place; rows and ticks stay, in red.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString a = tree.file(QStringLiteral("a"), "content");
    const QString b = tree.file(QStringLiteral("b"), "content");
    const QString c = tree.file(QStringLiteral("c"), "content");
    results.scanned({{a, b, c}});
    results.expectDeletion(2, QMessageBox::Yes);
    results.expectComplete();
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!QFileInfo::exists(a) && !QFileInfo::exists(b) && QFileInfo::exists(c));
    QCOMPARE(TempTree::read(trashed(QStringLiteral("a"))), QByteArray("content"));
    QCOMPARE(TempTree::read(trashed(QStringLiteral("b"))), QByteArray("content"));
    QCOMPARE(results.rows()->rowCount(), 3);
    QCOMPARE(results.tickedPaths(), QStringList({b, a}));
    const QImage image = results.table()->viewport()->grab().toImage();
    const QRect red = results.table()->visualRect(results.rows()->index(1, 1));
    QCOMPARE(image.pixelColor(red.topLeft() + QPoint(2, 2)), QColor(QStringLiteral("#ff6961")));
}

void tst_ResultsActions::aFileThatCannotBeMovedDoesNotStopTheRest()
{
    // What has gone and what may not be moved is logged, the rest moves, and all is called complete;
    // the box names what is still there.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString gone = tree.path(QStringLiteral("gone"));
    const QString closed = tree.file(QStringLiteral("closed/b"), "content");
    const QString free = tree.file(QStringLiteral("c"));
    results.scanned({{gone, closed, free, tree.file(QStringLiteral("d"))}});
    tree.setMode(QStringLiteral("closed"), 0555);
    const auto writable = qScopeGuard([&] { tree.setMode(QStringLiteral("closed"), 0755); });
    expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + closed);
    expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + gone);
    results.expectDeletion(3, QMessageBox::Yes);
    results.expectComplete(QStringLiteral("1 file was left where it is.\n"
                                          "could not be moved to the trash: 1"),
                           closed + QStringLiteral(": could not be moved to the trash\n"));
    const RestrictedRights rights;
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(closed), QByteArray("content"));
    QVERIFY(!QFileInfo::exists(free));
    QVERIFY(QFileInfo::exists(trashed(QStringLiteral("c"))));
}

void tst_ResultsActions::nothingTickedIsCompleteAtOnce()
{
    // Without a tick the boxes still come, about 0 files, and Yes is complete at once.
    ResultsPage results;
    results.expectDeletion(0, QMessageBox::Yes);
    results.expectComplete();
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
}

void tst_ResultsActions::closesTheWayBackWhileItMoves()
{
    // The way back is closed while files move and open again before the last box; the view is
    // repainted once for each file.
    const TempTree tree(path(QString()));
    ResultsPage results;
    results.scanned({{tree.file(QStringLiteral("a")),
                      tree.file(QStringLiteral("b")),
                      tree.file(QStringLiteral("c"))}});
    ClickableLabel *const back = results.button(QStringLiteral("Scan Configuration"));
    QVERIFY(QTest::qWaitForWindowExposed(&results.window));
    const EventRecorder recorder({{results.table(), QEvent::Paint}, {back, QEvent::EnabledChange}});
    results.expectComplete();
    results.page.deleteSelectedFiles();
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(back->isEnabled());
    QCOMPARE(recorder.types().mid(0, 4),
             QList<QEvent::Type>(
                 {QEvent::EnabledChange, QEvent::Paint, QEvent::Paint, QEvent::EnabledChange}));
}

void tst_ResultsActions::closingTheQuestionIsNo()
{
    // Escape, and Return on the box as it opens, delete nothing.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString a = tree.file(QStringLiteral("a"));
    results.scanned({{a, tree.file(QStringLiteral("b"))}});
    for (const int key : {int(Qt::Key_Escape), int(Qt::Key_Return)}) {
        for (const char *title : {"Warning", "Delete Duplicate Files"}) {
            results.boxes.expect(
                QString::fromLatin1(title),
                [](QWidget *) { return QString(); },
                [key](QWidget *box) { QTest::keyClick(box, static_cast<Qt::Key>(key)); });
        }
        results.press(QStringLiteral("Delete Selected Files"));
        QCOMPARE(results.boxes.failures(), QStringList());
        QVERIFY(QFileInfo::exists(a));
    }
}

void tst_ResultsActions::deletesTheCurrentFileForGood()
{
    // On Yes the file is deleted, not trashed, without another word; its row stays and is red.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString file = tree.file(QStringLiteral("a%1.txt"));
    results.scanned({{file}});
    results.clickCell(0, 2);
    results.expectBox(QMessageBox::Question,
                      QStringLiteral("Delete Duplicated Files"),
                      QStringLiteral("Start deleting ") + file
                          + QStringLiteral(" file. Are you sure?"),
                      QMessageBox::Yes);
    results.choose(QStringLiteral("Delete Current File"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!QFileInfo::exists(file));
    QVERIFY(!QFileInfo::exists(trashed(QStringLiteral("a%1.txt"))));
    QCOMPARE(results.rows()->rowCount(), 1);
    QCOMPARE(results.rows()->index(0, 2).data(Qt::BackgroundRole).value<QColor>(),
             QColor(QStringLiteral("#ff6961")));
}

void tst_ResultsActions::keepsTheCurrentFileOnNo()
{
    // On No the file is still there.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString file = tree.file(QStringLiteral("a.txt"));
    results.scanned({{file}});
    results.clickCell(0, 2);
    results.boxes.expectMessageBox(
        QStringLiteral("Delete Duplicated Files"),
        QStringLiteral("Start deleting %1 file. Are you sure?").arg(file),
        QMessageBox::Yes | QMessageBox::No,
        QMessageBox::No);
    results.choose(QStringLiteral("Delete Current File"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(QFileInfo::exists(file));
}

void tst_ResultsActions::menuOutlivesTheBoxThatItOpens()
{
    // A menu whose entry opens a box is there until the entry is done, and gone soon afterwards.
    const TempTree tree(path(QString()));
    ResultsPage results;
    results.scanned({{tree.file(QStringLiteral("a.txt"))}});
    results.clickCell(0, 2);
    bool isMenuBesideTheBox = false;
    results.boxes.expect(
        QStringLiteral("Delete Duplicated Files"),
        [&](QWidget *) {
            isMenuBesideTheBox = !results.page.findChildren<QMenu *>().isEmpty();
            return QString();
        },
        [](QWidget *box) { box->close(); });
    results.choose(QStringLiteral("Delete Current File"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(isMenuBesideTheBox);
    QTRY_VERIFY(results.page.findChildren<QMenu *>().isEmpty());
}

void tst_ResultsActions::showsAFileNameAsItReads()
{
    // Markup in a file's name is text in the question, whether the file can be deleted or not.
    ResultsPage results;
    const QString file = QStringLiteral("/<b>x");
    results.expectBox(QMessageBox::Question,
                      QStringLiteral("Delete Duplicated Files"),
                      QStringLiteral("Start deleting /<b>x file. Are you sure?"),
                      QMessageBox::Yes,
                      Qt::PlainText);
    results.page.removeFile(file);
    QCOMPARE(results.boxes.failures(), QStringList());
}

void tst_ResultsActions::savesEveryRow()
{
    // One line a row in the order shown, ticked or not, with its group and size; nothing is quoted.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString a = tree.file(QStringLiteral("a;\"x\".txt"), QByteArray(2047, 'x'));
    const QString b = tree.file(QStringLiteral("line\nbreak"), QByteArray(1023, 'x'));
    results.scanned({{a, b}, {QStringLiteral("/c"), QStringLiteral("/d")}});
    save(&results, path(QStringLiteral("list.txt")), true);
    const QByteArray expectedList = "1;" + QFile::encodeName(b) + ";0\r\n1;" + QFile::encodeName(a)
        + ";1\r\n2;/d;0\r\n2;/c;0\r\n";
    QCOMPARE(TempTree::read(path(QStringLiteral("list.txt"))), expectedList);
}

void tst_ResultsActions::savesFromTheMenu()
{
    // The entry of the context menu saves the same list.
    ResultsPage results;
    results.scanned({{QStringLiteral("/a"), QStringLiteral("/b")}});
    results.clickCell(0, 2);
    results.boxes.expectFileDialog(QStringLiteral("Save File"), path(QStringLiteral("list.csv")));
    results.expectFileSaved();
    results.choose(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(path(QStringLiteral("list.csv"))), QByteArray("1;/b;0\r\n1;/a;0\r\n"));
}

void tst_ResultsActions::substitutesOneFieldAfterTheOther()
{
    // A place marker in a path takes the size, and the size's own place is then left as it is.
    ResultsPage results;
    results.scanned({{QStringLiteral("/a%1b")}, {QStringLiteral("/%3")}, {QStringLiteral("/%9")}});
    save(&results, path(QStringLiteral("list.txt")), true);
    QCOMPARE(TempTree::read(path(QStringLiteral("list.txt"))),
             QByteArray("1;/a0b;%3\r\n2;/0;0\r\n3;/%9;0\r\n"));
}

void tst_ResultsActions::writesInTheLocalEncoding()
{
    // The list is in the local encoding; what that one lacks becomes a question mark.
    ResultsPage results;
    results.scanned({{QStringLiteral("/\u00e9\u65e5")}});
    save(&results, path(QStringLiteral("list.txt")), true);
    QCOMPARE(
        TempTree::read(path(QStringLiteral("list.txt"))),
        QByteArray(Toolkit::isInLatin1() ? "1;/\xe9?;0\r\n" : "1;/\xc3\xa9\xe6\x97\xa5;0\r\n"));
}

void tst_ResultsActions::asksForATextFileInTheHomeFolder()
{
    // The dialog opens in the home folder and offers text files.
    ResultsPage results;
    const QString homeFolder = home();
    results.boxes.expect(
        QStringLiteral("Save File"),
        [homeFolder](QWidget *widget) {
            const auto *const dialog = qobject_cast<QFileDialog *>(widget);
            if (dialog == nullptr || dialog->windowTitle() != QStringLiteral("Save File")) {
                return QStringLiteral("it is another box");
            }
            if (dialog->directory().absolutePath() != homeFolder) {
                return dialog->directory().absolutePath();
            }
            const QStringList filters(QStringLiteral("Text files (*.txt *.csv)"));
            return dialog->nameFilters() == filters
                    && dialog->acceptMode() == QFileDialog::AcceptSave
                ? QString()
                : dialog->nameFilters().join(QLatin1Char('|'));
        },
        [](QWidget *widget) { QTest::keyClick(widget, Qt::Key_Escape); });
    results.press(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
}

void tst_ResultsActions::cancellingSavesNothing()
{
    // A cancelled dialog writes nothing and says nothing.
    ResultsPage results;
    results.scanned({{QStringLiteral("/a")}});
    save(&results, QString(), false);
    QVERIFY(QDir(home()).entryList(QDir::Files).isEmpty());
    QVERIFY(QDir(path(QString())).isEmpty());
}

void tst_ResultsActions::staysSilentWhereItCannotWrite_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a folder that cannot be written") << QStringLiteral("closed/list.txt");
    QTest::newRow("a folder that is not there") << QStringLiteral("missing/list.txt");
    QTest::newRow("a file that cannot be written") << QStringLiteral("closed/old.txt");
}

void tst_ResultsActions::staysSilentWhereItCannotWrite()
{
    // Where no list can be written nothing is changed and nothing is said.
    QFETCH(QString, name);
    const TempTree tree(path(QString()));
    tree.file(QStringLiteral("closed/old.txt"), "old");
    tree.setMode(QStringLiteral("closed/old.txt"), 0444);
    tree.setMode(QStringLiteral("closed"), 0555);
    const auto writable = qScopeGuard([&] { tree.setMode(QStringLiteral("closed"), 0755); });
    const RestrictedRights rights;
    ResultsPage results;
    results.scanned({{QStringLiteral("/a")}});
    if (QFileInfo::exists(path(name))) {
        expectOverwriting(&results, path(name));
    } else {
        results.boxes.expectFileDialog(QStringLiteral("Save File"), path(name));
    }
    results.press(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(path(QStringLiteral("closed/old.txt"))), QByteArray("old"));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("closed/list.txt"))));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("missing"))));
}

void tst_ResultsActions::leavesAPipeAlone()
{
    // A pipe that is chosen for the list stays a pipe, and the page does not wait for its reader.
    ResultsPage results;
    results.scanned({{QStringLiteral("/a")}});
    const QString pipe = TempTree(path(QString())).fifo(QStringLiteral("pipe"));
    expectOverwriting(&results, pipe);
    results.press(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(QFileInfo::exists(pipe) && !QFileInfo(pipe).isFile());
}

void tst_ResultsActions::savesUnderANameOfAnyLength_data()
{
    QTest::addColumn<quint64>("limit");
    QTest::addColumn<bool>("isSaved");
    QTest::newRow("with room") << quint64(1000000) << true;
    QTest::newRow("without room") << quint64(20000) << false;
}

void tst_ResultsActions::savesUnderANameOfAnyLength()
{
    // A name of 255 bytes leaves no room for a longer temporary one. It is taken, and does not stay
    // behind with a part of the list.
    QFETCH(quint64, limit);
    QFETCH(bool, isSaved);
    ResultsPage results;
    results.scanned({longGroup()});
    const TempTree tree(path(QString()));
    const QString file = tree.root() + QLatin1Char('/') + QString(255, QLatin1Char('n'));
    results.boxes.expectFileDialog(QStringLiteral("Save File"), file);
    if (isSaved) {
        results.expectFileSaved();
    }
    {
        const SmallFiles small(limit);
        results.press(QStringLiteral("Save List"));
    }
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(QFileInfo::exists(file), isSaved);
    QVERIFY(!isSaved || TempTree::read(file).count('\n') == longGroup().size());
}

void tst_ResultsActions::replacesTheOldList()
{
    // Of a longer list that was there before nothing is left.
    ResultsPage results;
    results.scanned({{QStringLiteral("/a")}});
    const QString file =
        TempTree(path(QString())).file(QStringLiteral("list.txt"), QByteArray(5000, 'x'));
    expectOverwriting(&results, file);
    results.expectFileSaved();
    results.press(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(file), QByteArray("1;/a;0\r\n"));
}

void tst_ResultsActions::writesAFileInAClosedFolder()
{
    // A file that can be written is, even where its folder takes no new one.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("closed/list.txt"), QByteArray(5000, 'x'));
    tree.setMode(QStringLiteral("closed"), 0555);
    const auto writable = qScopeGuard([&] { tree.setMode(QStringLiteral("closed"), 0755); });
    const RestrictedRights rights;
    ResultsPage results;
    results.scanned({{QStringLiteral("/a")}});
    expectOverwriting(&results, file);
    results.expectFileSaved();
    results.press(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(file), QByteArray("1;/a;0\r\n"));
}

void tst_ResultsActions::keepsTheOldListIfTheNewOneIsCutShort_data()
{
    QTest::addColumn<QStringList>("group");
    QTest::addColumn<int>("bytes");
    QTest::newRow("a long list") << longGroup() << 20000;
    // Shorter than the toolkit's buffer, which hides what it could not write.
    QTest::newRow("a short list") << QStringList(longGroup().mid(0, 20)) << 100;
    QTest::newRow("a short list without any room") << QStringList(longGroup().mid(0, 20)) << 0;
}

void tst_ResultsActions::keepsTheOldListIfTheNewOneIsCutShort()
{
    // A list for which there is no room is not called saved, and the old one is still whole.
    QFETCH(QStringList, group);
    QFETCH(int, bytes);
    ResultsPage results;
    results.scanned({group});
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("list.txt"), "old");
    expectOverwriting(&results, file);
    {
        const SmallFiles limit(static_cast<rlim_t>(bytes));
        results.press(QStringLiteral("Save List"));
    }
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(file), QByteArray("old"));
    QCOMPARE(QDir(tree.root()).entryList(QDir::Files), QStringList(QStringLiteral("list.txt")));
}

void tst_ResultsActions::keepsTheOldListInAClosedFolderIfTheNewOneIsCutShort()
{
    // Also where the old list must be written over it is whole after a new one without room.
    const TempTree tree(path(QString()));
    for (const int oldBytes : {100, 19000}) {
        const QByteArray old(oldBytes, 'x');
        const QString file = tree.file(QStringLiteral("closed/list.txt"), old);
        tree.setMode(QStringLiteral("closed"), 0555);
        const auto writable = qScopeGuard([&] { tree.setMode(QStringLiteral("closed"), 0755); });
        const RestrictedRights rights;
        ResultsPage results;
        results.scanned({longGroup()});
        expectOverwriting(&results, file);
        {
            const SmallFiles limit(20000);
            results.press(QStringLiteral("Save List"));
        }
        QCOMPARE(results.boxes.failures(), QStringList());
        QCOMPARE(TempTree::read(file), old);
    }
}

void tst_ResultsActions::leavesAFolderAlone()
{
    // A folder that has come to the place of the list by then stays one, and nothing is called saved.
    ResultsPage results;
    results.scanned({{QStringLiteral("/a")}});
    const TempTree tree(path(QString()));
    const QString place = tree.path(QStringLiteral("list.txt"));
    results.boxes.expect(
        QStringLiteral("Save File"),
        [](QWidget *widget) {
            return qobject_cast<QFileDialog *>(widget) != nullptr ? QString()
                                                                  : QStringLiteral("no dialog");
        },
        [&](QWidget *widget) {
            auto *const edit = widget->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            edit->setText(place);
            QTest::keyClick(edit, Qt::Key_Return);
            tree.file(QStringLiteral("list.txt/inside"), "content");
        });
    results.press(QStringLiteral("Save List"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(TempTree::read(place + QStringLiteral("/inside")), QByteArray("content"));
    QCOMPARE(QDir(tree.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("list.txt")));
}

void tst_ResultsActions::savesAnEmptyList()
{
    // Without rows the list is an empty file.
    ResultsPage results;
    save(&results, path(QStringLiteral("list.txt")), true);
    QCOMPARE(TempTree::read(path(QStringLiteral("list.txt"))), QByteArray());
    QVERIFY(QFileInfo::exists(path(QStringLiteral("list.txt"))));
}

TWINSIFT_TEST_MAIN(tst_ResultsActions)
#include "tst_ResultsActions.moc"
