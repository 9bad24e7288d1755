// SPDX-License-Identifier: MIT
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/config/FolderTreeDriver.h"
#include "ui/Picture.h"
#include "ui/config/FileSystemTreeModel.h"
#include "ui/config/FileSystemTreeWidget.h"

#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTreeView>
#include <QVBoxLayout>

#include <memory>

#define TRY_VERIFY(condition) \
    QTRY_VERIFY_WITH_TIMEOUT(condition, FolderTreeDriver::loadMilliseconds)
#define TRY_COMPARE(seen, wanted) \
    QTRY_COMPARE_WITH_TIMEOUT(seen, wanted, FolderTreeDriver::loadMilliseconds)

namespace
{
const char *const dataChanged = SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>));
} // namespace

class tst_FileSystemTreeWidget final : public TestCase
{
    Q_OBJECT

protected slots:
    void init() override;
    void cleanup() override;

private slots:
    void startsWithThePickingPage();
    void textsAndSizes();
    void picturesAreThoseOfTheProgram();
    void pickingPageFromTopToBottom();
    void slotsAreDeclaredInOrder();
    void nothingIsSelectedBeforeAFolderIsChosen();
    void folderDialogAsksForFoldersAtHome();
    void dialogWithoutAFolderChangesNothing_data();
    void dialogWithoutAFolderChangesNothing();
    void chosenFolderIsShownExpandedAndCurrent();
    void chosenFolderIsInViewWhenTheFoldersAboveAreLoaded();
    void wholeTreeIsShownWithoutHiddenFolders();
    void clickOnTheBoxTicksAndUnticks();
    void clickOnTheNameTicksNothing();
    void clickOnAPartialFolderTicksIt();
    void spaceTicksAndRefreshesTheWarning();
    void tickedFolderTicksItsChildrenWhenExpandedByKey();
    void collapsedFolderIsNotReachedByATickAbove();
    void partialFolderExpandedByMouseKeepsItsChildren();
    void visibleRowsAreRepaintedAfterAClick();
    void visibleRowsAreRepaintedAfterExpandingAndCollapsing();
    void warningFollowsTheTickedFolders();
    void newFolderMovesNoTick();
    void deletedAndRenamedFoldersUnderAShownTree();

private:
    void openAt(const QString &where);
    void setUpTree();

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<FileSystemTreeWidget> widget;
    std::unique_ptr<FolderTreeDriver> driver;
};

void tst_FileSystemTreeWidget::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("root")));
    widget = std::make_unique<FileSystemTreeWidget>(nullptr);
    driver = std::make_unique<FolderTreeDriver>(widget.get());
    widget->resize(600, 700);
    widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
}

void tst_FileSystemTreeWidget::cleanup()
{
    driver.reset();
    widget.reset();
    TestCase::cleanup();
}

void tst_FileSystemTreeWidget::openAt(const QString &where)
{
    QCOMPARE(driver->choose(where), QStringList());
    TRY_VERIFY(driver->isSettledAt(where));
}

void tst_FileSystemTreeWidget::setUpTree()
{
    for (const char *name : {"a/one/deep", "a/two", "b", "c"}) {
        tree->folder(QLatin1String(name));
    }
    openAt(tree->root());
}

void tst_FileSystemTreeWidget::startsWithThePickingPage()
{
    // The second of two pages is shown, the view has no model and there is no warning.
    auto *const pages = widget->findChild<QStackedWidget *>();
    QCOMPARE(pages->count(), 2);
    QCOMPARE(pages->currentIndex(), 1);
    QVERIFY(driver->button()->isVisible());
    QVERIFY(pages->widget(0)->isAncestorOf(driver->view()));
    QVERIFY(pages->widget(1)->isAncestorOf(driver->button()));
    QVERIFY(driver->view()->model() == nullptr);
    QVERIFY(driver->warning()->isHidden());
}

void tst_FileSystemTreeWidget::textsAndSizes()
{
    // The fixed texts, the minimum width, the selection mode and the warning's measures.
    QCOMPARE(widget->minimumWidth(), 480);
    QCOMPARE(driver->button()->text(), QStringLiteral("Select folder..."));
    QCOMPARE(driver->view()->selectionMode(), QAbstractItemView::ExtendedSelection);
    auto *const pages = widget->findChild<QStackedWidget *>();
    const auto *const layout = qobject_cast<QVBoxLayout *>(pages->widget(0)->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->count(), 3);
    const auto *const caption = qobject_cast<QLabel *>(layout->itemAt(0)->widget());
    QCOMPARE(caption->text(), QStringLiteral("Select folders to scan:"));
    QCOMPARE(layout->itemAt(1)->widget(), driver->view());
    QCOMPARE(layout->itemAt(2)->widget(), driver->warning());

    const QLayout *const row = driver->warning()->layout();
    QCOMPARE(row->count(), 2);
    const auto *const icon = qobject_cast<QLabel *>(row->itemAt(0)->widget());
    const auto *const text = qobject_cast<QLabel *>(row->itemAt(1)->widget());
    QCOMPARE(icon->minimumWidth(), 66);
    QCOMPARE(icon->maximumWidth(), 66);
    QCOMPARE(icon->alignment(), Qt::AlignCenter);
    QVERIFY(text->wordWrap());
    QCOMPARE(text->text(),
             QStringLiteral("<b>You have selected one of the system directories.</b><br>We "
                            "recommend that you do not include the search for duplicates in these "
                            "folders."));
}

void tst_FileSystemTreeWidget::picturesAreThoseOfTheProgram()
{
    // The folder is 256 high and the warning sign 64, each in the middle of its place.
    const auto shows = [](const QLabel *label, const QString &path, int height) {
        const QPixmap wanted = Picture::scaledToHeight(path, height, label->devicePixelRatioF());
        return !wanted.isNull() && label->alignment() == Qt::AlignCenter
            && label->pixmap(Qt::ReturnByValue).toImage() == wanted.toImage();
    };
    const QWidget *const picking = widget->findChild<QStackedWidget *>()->widget(1);
    QVERIFY(shows(picking->findChild<QLabel *>(), QStringLiteral(":/content/folder.png"), 256));
    const QLayout *const row = driver->warning()->layout();
    QVERIFY(shows(qobject_cast<QLabel *>(row->itemAt(0)->widget()),
                  QStringLiteral(":/content/warning.png"),
                  64));
}

void tst_FileSystemTreeWidget::pickingPageFromTopToBottom()
{
    // The picture, then the button between two stretches.
    const QWidget *const page = widget->findChild<QStackedWidget *>()->widget(1);
    const auto *const layout = qobject_cast<QVBoxLayout *>(page->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->count(), 4);
    QVERIFY(qobject_cast<QLabel *>(layout->itemAt(0)->widget()) != nullptr);
    QVERIFY(layout->itemAt(1)->spacerItem() != nullptr);
    QCOMPARE(layout->itemAt(2)->widget(), driver->button());
    QVERIFY(layout->itemAt(3)->spacerItem() != nullptr);
}

void tst_FileSystemTreeWidget::slotsAreDeclaredInOrder()
{
    // The slots by name, in the order in which they are declared.
    const QMetaObject *const meta = widget->metaObject();
    QStringList names;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        names.append(QString::fromLatin1(meta->method(i).methodSignature()));
    }
    QCOMPARE(names,
             QStringList({QStringLiteral("onItemClicked(QModelIndex)"),
                          QStringLiteral("onItemExpanded(QModelIndex)"),
                          QStringLiteral("onItemUnexpanded(QModelIndex)"),
                          QStringLiteral("getRootFolder()")}));
}

void tst_FileSystemTreeWidget::nothingIsSelectedBeforeAFolderIsChosen()
{
    // An empty list, and a repaint without a model is harmless.
    QCOMPARE(widget->selectedFolders(), QStringList());
    widget->updateViewport();
    widget->onItemClicked(QModelIndex());
    widget->onItemExpanded(QModelIndex());
    widget->onItemUnexpanded(QModelIndex());
    QCOMPARE(widget->selectedFolders(), QStringList());
}

void tst_FileSystemTreeWidget::folderDialogAsksForFoldersAtHome()
{
    // The dialog has its caption, starts in the home folder, shows folders and keeps links.
    ModalDriver modals;
    const QString wanted = home();
    modals.expect(
        QStringLiteral("Choose Directory"),
        [wanted](QWidget *box) -> QString {
            const auto *const dialog = qobject_cast<QFileDialog *>(box);
            if (dialog == nullptr || dialog->windowTitle() != QLatin1String("Choose Directory")) {
                return QStringLiteral("not the dialog for a folder");
            }
            if (dialog->directory().absolutePath() != wanted) {
                return QStringLiteral("it starts in ") + dialog->directory().absolutePath();
            }
            const bool isRight = dialog->testOption(QFileDialog::ShowDirsOnly)
                && dialog->testOption(QFileDialog::DontResolveSymlinks);
            return isRight ? QString() : QStringLiteral("it has other options");
        },
        [](QWidget *box) { QTest::keyClick(box, Qt::Key_Escape); });
    QTest::mouseClick(driver->button(), Qt::LeftButton);
    QCOMPARE(modals.failures().join(QLatin1Char('\n')), QString());
}

void tst_FileSystemTreeWidget::dialogWithoutAFolderChangesNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("cancelled") << QString();
    QTest::newRow("what is compiled into the program") << QStringLiteral(":/content");
}

void tst_FileSystemTreeWidget::dialogWithoutAFolderChangesNothing()
{
    // The picking page stays and no model is made.
    QFETCH(const QString, path);
    ModalDriver modals;
    modals.expectFileDialog(QStringLiteral("Choose Directory"), path);
    QTest::mouseClick(driver->button(), Qt::LeftButton);
    QCOMPARE(modals.failures().join(QLatin1Char('\n')), QString());
    QCOMPARE(widget->findChild<QStackedWidget *>()->currentIndex(), 1);
    QVERIFY(driver->view()->model() == nullptr);
    QVERIFY(widget->findChild<FileSystemTreeModel *>() == nullptr);
}

void tst_FileSystemTreeWidget::chosenFolderIsShownExpandedAndCurrent()
{
    // The tree page comes with the folder expanded, selected and current.
    setUpTree();
    const QModelIndex root = driver->at(tree->root());
    QCOMPARE(widget->findChild<QStackedWidget *>()->currentIndex(), 0);
    QVERIFY(driver->view()->isExpanded(root));
    QCOMPARE(driver->view()->currentIndex(), root);
    QCOMPARE(driver->view()->selectionModel()->selectedIndexes(), QModelIndexList({root}));
    QCOMPARE(driver->model()->rootPath(), tree->root());
    QVERIFY(driver->model()->isReadOnly());
    QCOMPARE(driver->model()->filter(), QDir::AllDirs | QDir::NoDot | QDir::NoDotDot);
    QCOMPARE(static_cast<QObject *>(driver->model())->parent(), widget.get());
    QVERIFY(driver->warning()->isHidden());
    QCOMPARE(widget->selectedFolders(), QStringList());
}

void tst_FileSystemTreeWidget::chosenFolderIsInViewWhenTheFoldersAboveAreLoaded()
{
    // However many siblings it and the folders above it have.
    for (int i = 0; i < 150; ++i) {
        tree->folder(QStringLiteral("sibling%1").arg(i));
    }
    const QString chosen = tree->folder(QStringLiteral("zz/inner"));
    openAt(chosen);
    const auto inView = [this, &chosen] {
        return driver->view()->viewport()->rect().intersects(
            driver->view()->visualRect(driver->at(chosen)));
    };
    TRY_VERIFY(driver->model()->rowCount(driver->at(tree->root())) == 151);
    TRY_VERIFY(driver->isLoaded(tree->root()) && driver->isLoaded(QDir::rootPath()));
    TRY_VERIFY(inView());
    // It is the last of them; the first of the rows is another one once they are sorted.
    TRY_COMPARE(driver->childrenOf(tree->root()).first(), QStringLiteral("sibling0"));
    QCOMPARE(driver->childrenOf(tree->root()).last(), QStringLiteral("zz"));
    QVERIFY(inView());
}

void tst_FileSystemTreeWidget::wholeTreeIsShownWithoutHiddenFolders()
{
    // The view starts at the root of the file system; files and hidden folders do not appear.
    tree->folder(QStringLiteral(".hidden"));
    tree->file(QStringLiteral("file.txt"));
    setUpTree();
    QVERIFY(!driver->view()->rootIndex().isValid());
    QCOMPARE(driver->model()->filePath(driver->model()->index(0, 0, QModelIndex())),
             QDir::rootPath());
    QCOMPARE(driver->view()->header()->count(), 1);
    QCOMPARE(driver->childrenOf(tree->root()),
             QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
}

void tst_FileSystemTreeWidget::clickOnTheBoxTicksAndUnticks()
{
    // A click on a check box ticks the folder, a second one unticks it.
    setUpTree();
    const QString b = tree->path(QStringLiteral("b"));
    driver->clickBox(b);
    QCOMPARE(widget->selectedFolders(), QStringList(b));
    QCOMPARE(driver->state(tree->root()), Qt::PartiallyChecked);
    driver->clickBox(b);
    QCOMPARE(widget->selectedFolders(), QStringList());
    QCOMPARE(driver->state(tree->root()), Qt::Unchecked);
}

void tst_FileSystemTreeWidget::clickOnTheNameTicksNothing()
{
    // It selects the row alone.
    setUpTree();
    const QString b = tree->path(QStringLiteral("b"));
    driver->clickName(b);
    QCOMPARE(driver->state(b), Qt::Unchecked);
    QCOMPARE(driver->view()->currentIndex(), driver->at(b));
}

void tst_FileSystemTreeWidget::clickOnAPartialFolderTicksIt()
{
    // With its loaded children, also those that were not ticked.
    setUpTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    QCOMPARE(driver->state(tree->root()), Qt::PartiallyChecked);
    driver->clickBox(tree->root());
    QCOMPARE(driver->state(tree->root()), Qt::Checked);
    QCOMPARE(driver->state(tree->path(QStringLiteral("c"))), Qt::Checked);
}

void tst_FileSystemTreeWidget::spaceTicksAndRefreshesTheWarning()
{
    // A tick by key counts like one by mouse, the warning comes and goes with it.
    const QString library = tree->folder(QStringLiteral("Library"));
    setUpTree();
    driver->clickName(library);
    QTest::keyClick(driver->view(), Qt::Key_Space);
    QCOMPARE(widget->selectedFolders(), QStringList(library));
    QVERIFY(driver->warning()->isVisible());
    QTest::keyClick(driver->view(), Qt::Key_Space);
    QCOMPARE(widget->selectedFolders(), QStringList());
    QVERIFY(driver->warning()->isHidden());
}

void tst_FileSystemTreeWidget::tickedFolderTicksItsChildrenWhenExpandedByKey()
{
    // The children are loaded by the expansion itself and take the tick.
    setUpTree();
    const QString a = tree->path(QStringLiteral("a"));
    driver->clickBox(a);
    QCOMPARE(widget->selectedFolders(), QStringList(a));
    QTest::keyClick(driver->view(), Qt::Key_Down);
    QCOMPARE(driver->view()->currentIndex(), driver->at(a));
    QTest::keyClick(driver->view(), Qt::Key_Right);
    QVERIFY(driver->view()->isExpanded(driver->at(a)));
    TRY_VERIFY(driver->isSettledAt(a));
    QCOMPARE(driver->state(tree->path(QStringLiteral("a/one"))), Qt::Checked);
    QCOMPARE(driver->state(tree->path(QStringLiteral("a/two"))), Qt::Checked);
    driver->clickBox(tree->path(QStringLiteral("a/two")));
    QCOMPARE(widget->selectedFolders(), QStringList(tree->path(QStringLiteral("a/one"))));
}

void tst_FileSystemTreeWidget::collapsedFolderIsNotReachedByATickAbove()
{
    // The children under a collapsed folder take the tick when it is expanded again.
    setUpTree();
    const QString a = tree->path(QStringLiteral("a"));
    const QString one = tree->path(QStringLiteral("a/one"));
    driver->clickName(a);
    QTest::keyClick(driver->view(), Qt::Key_Right);
    TRY_VERIFY(driver->isSettledAt(a));
    QTest::keyClick(driver->view(), Qt::Key_Left);
    QVERIFY(!driver->view()->isExpanded(driver->at(a)));
    driver->clickBox(tree->root());
    QCOMPARE(driver->state(a), Qt::Checked);
    QCOMPARE(driver->state(one), Qt::Unchecked);
    driver->clickBranch(a);
    QVERIFY(driver->view()->isExpanded(driver->at(a)));
    QCOMPARE(driver->state(one), Qt::Checked);
}

void tst_FileSystemTreeWidget::partialFolderExpandedByMouseKeepsItsChildren()
{
    // Its children stay as they are; a tick above then stops at the folder itself.
    setUpTree();
    const QString a = tree->path(QStringLiteral("a"));
    driver->clickBranch(a);
    TRY_VERIFY(driver->isSettledAt(a));
    driver->clickBox(tree->path(QStringLiteral("a/one")));
    driver->clickBranch(a);
    driver->clickBranch(a);
    QVERIFY(driver->view()->isExpanded(driver->at(a)));
    QCOMPARE(driver->state(a), Qt::PartiallyChecked);
    QCOMPARE(driver->state(tree->path(QStringLiteral("a/one"))), Qt::Checked);
    QCOMPARE(driver->state(tree->path(QStringLiteral("a/two"))), Qt::Unchecked);
    driver->clickBox(tree->root());
    QCOMPARE(driver->state(a), Qt::Checked);
    QCOMPARE(driver->state(tree->path(QStringLiteral("a/two"))), Qt::Unchecked);
}

void tst_FileSystemTreeWidget::visibleRowsAreRepaintedAfterAClick()
{
    // One dataChanged from the first to the last visible row, without roles.
    setUpTree();
    QSignalSpy changed(driver->model(), dataChanged);
    const QModelIndex first = driver->view()->indexAt(QPoint(0, 0));
    const QModelIndex last =
        driver->view()->indexAt(QPoint(driver->view()->width() - 1, driver->view()->height() - 1));
    driver->clickBox(tree->path(QStringLiteral("b")));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex(), first);
    QCOMPARE(changed.first().at(1).toModelIndex(), last);
    QVERIFY(changed.first().at(2).value<QVector<int>>().isEmpty());
    changed.clear();
    widget->onItemClicked(QModelIndex());
    QCOMPARE(changed.count(), 0);
}

void tst_FileSystemTreeWidget::visibleRowsAreRepaintedAfterExpandingAndCollapsing()
{
    // One dataChanged of the visible rows each time, without roles.
    setUpTree();
    const QString a = tree->path(QStringLiteral("a"));
    driver->clickBranch(a);
    TRY_VERIFY(driver->isSettledAt(a));
    QSignalSpy changed(driver->model(), dataChanged);
    for (const bool isExpanded : {false, true}) {
        changed.clear();
        driver->clickBranch(a);
        QCOMPARE(driver->view()->isExpanded(driver->at(a)), isExpanded);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex(), driver->view()->indexAt(QPoint(0, 0)));
        QVERIFY(changed.first().at(2).value<QVector<int>>().isEmpty());
    }
}

void tst_FileSystemTreeWidget::warningFollowsTheTickedFolders()
{
    // The Library folder inside somebody's home raises it; unticking lowers it.
    const QString library = tree->folder(QStringLiteral("somebody/Library"));
    tree->folder(QStringLiteral("somebody/Music"));
    setUpTree();
    const QString somebody = tree->path(QStringLiteral("somebody"));
    driver->clickBranch(somebody);
    TRY_VERIFY(driver->isSettledAt(somebody));
    driver->clickBox(tree->path(QStringLiteral("somebody/Music")));
    QVERIFY(driver->warning()->isHidden());
    driver->clickBox(tree->path(QStringLiteral("somebody/Music")));
    driver->clickBox(library);
    QCOMPARE(widget->selectedFolders(), QStringList(library));
    QVERIFY(driver->warning()->isVisible());
    driver->clickBox(library);
    QVERIFY(driver->warning()->isHidden());
}

void tst_FileSystemTreeWidget::newFolderMovesNoTick()
{
    // Rows move under the shown tree; the ticks shown stay with their folders.
    setUpTree();
    const QString b = tree->path(QStringLiteral("b"));
    driver->clickBox(b);
    const QString aa = tree->folder(QStringLiteral("aa"));
    TRY_VERIFY(driver->childrenOf(tree->root()).value(1) == QLatin1String("aa"));
    QCOMPARE(driver->state(aa), Qt::Unchecked);
    QCOMPARE(driver->state(b), Qt::Checked);
    QCOMPARE(widget->selectedFolders(), QStringList(b));
    driver->clickBox(aa);
    QCOMPARE(widget->selectedFolders(), QStringList({aa, b}));
}

void tst_FileSystemTreeWidget::deletedAndRenamedFoldersUnderAShownTree()
{
    // Expanded and ticked folders go and get other names; nothing else becomes selected.
    setUpTree();
    const QString a = tree->path(QStringLiteral("a"));
    driver->clickBox(tree->path(QStringLiteral("c")));
    driver->clickBranch(a);
    TRY_VERIFY(driver->isSettledAt(a));
    driver->clickBranch(tree->path(QStringLiteral("a/one")));
    TRY_VERIFY(driver->isSettledAt(tree->path(QStringLiteral("a/one"))));
    driver->clickBox(a);
    QVERIFY(QDir(a).removeRecursively());
    QVERIFY(QDir().rename(tree->path(QStringLiteral("c")), tree->path(QStringLiteral("d"))));
    const QStringList left = {QStringLiteral("b"), QStringLiteral("d")};
    TRY_COMPARE(driver->childrenOf(tree->root()), left);
    QCOMPARE(widget->selectedFolders(), QStringList());
    driver->clickBox(tree->root());
    driver->clickBox(tree->path(QStringLiteral("d")));
    QCOMPARE(widget->selectedFolders(), QStringList(tree->path(QStringLiteral("b"))));
}

TWINSIFT_TEST_MAIN(tst_FileSystemTreeWidget)
#include "tst_FileSystemTreeWidget.moc"
