// SPDX-License-Identifier: MIT
#include "tests/support/ModalDriver.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/filetypes/FileTypesEditWidget.h"
#include "ui/filetypes/FileTypesWidget.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>

class tst_FileTypesWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;

    void firstStartMakesTheDefaultFile();
    void rowsAreUntickedAndLeftAligned();
    void layoutOfTheWindow();
    void focusChainFollowsTheLayout();
    void defaultRowsFitTheScreen();
    void lineFeedTakesNoSecondLine();
    void longListFitsTheScreen();
    void fileOfTheDataFolderIsRead_data();
    void fileOfTheDataFolderIsRead();
    void unreadableFileLeavesTheListEmpty_data();
    void unreadableFileLeavesTheListEmpty();
    void forbiddenFileLeavesTheListEmpty();
    void fileThatCannotBeMadeLeavesTheListEmpty();
    void furtherFileIsAppended();
    void hugeFileStillOpens();

    void firstRowCannotBeChanged_data();
    void firstRowCannotBeChanged();
    void rowFoundByTypingDecides();
    void anyFileIsExclusive();
    void clickOnTheTextOfAnyFileUnticksTheOthers();
    void clickOnTheTextOfAnotherRowUnticksAnyFile();
    void spaceTicksWithoutUntickingOthers();

    void addAppendsAndLosesTicks();
    void addRefusesAWholeEntry();
    void editMovesToTheEndAndLosesTicks();
    void editReplacesAllEqualEntries();
    void editorMayOutliveTheWindow();
    void deleteAsksAndKeepsTheRow();
    void deleteDeclinedKeepsTheEntry();
    void questionHasNoParent();
    void rowBelowADeletedOneStandsForTheNextEntry();
    void rowWithoutEntryDoesNothing();

    void currentMaskListTicksEqualRows();
    void closeSavesThenTellsThenDeletes();
    void closeTellsTickedRowsFromTopToBottom();
    void unwritablePlaceStillTells_data();
    void unwritablePlaceStillTells();
    void readOnlyFileStillTells();
    void strangersFileStillTells_data();
    void strangersFileStillTells();
    void savedFileIsReadWithEmptyEntries();
    void frameNeitherSavesNorTells();
    void tenThousandEntries();

private:
    QString dataFolder() const;
    void writeMaskFile(const QByteArray &content) const;
    void openWindow();
    QListWidget *list() const;
    QStringList rows() const;
    QList<int> tickedRows() const;
    QPushButton *button(const QString &text) const;
    void press(const QString &text) const;
    void clickRow(int row) const;
    void clickCheckBox(int row) const;
    void answerQuestion(QMessageBox::StandardButton answer) const;
    QByteArray saved() const;
    static FileTypesEditWidget *editor();
    static void typeAndAccept(const QString &name, const QString &masks);

    std::unique_ptr<ModalDriver> driver;
    QPointer<FileTypesWidget> window;
};

void tst_FileTypesWidget::init()
{
    TestCase::init();
    // Refuses boxes that no test has announced; a test would wait for their answer.
    driver = std::make_unique<ModalDriver>();
    allowMessages(QRegularExpression(QStringLiteral("^(SEE|write) ")));
}

void tst_FileTypesWidget::cleanup()
{
    delete window;
    delete editor();
    const QStringList failures = driver->failures();
    driver.reset();
    TestCase::cleanup();
    QCOMPARE(failures, QStringList());
}

QString tst_FileTypesWidget::dataFolder() const
{
    return home() + QStringLiteral("/.local/share/tst_FileTypesWidget");
}

void tst_FileTypesWidget::writeMaskFile(const QByteArray &content) const
{
    TempTree(dataFolder()).file(QStringLiteral("ftie.dat"), content);
}

void tst_FileTypesWidget::openWindow()
{
    window = new FileTypesWidget(nullptr);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.data()));
}

QListWidget *tst_FileTypesWidget::list() const
{
    return window->findChild<QListWidget *>();
}

QStringList tst_FileTypesWidget::rows() const
{
    QStringList texts;
    for (int row = 0; row < list()->count(); ++row) {
        texts.append(list()->item(row)->text());
    }
    return texts;
}

QList<int> tst_FileTypesWidget::tickedRows() const
{
    QList<int> ticked;
    for (int row = 0; row < list()->count(); ++row) {
        if (list()->item(row)->checkState() == Qt::Checked) {
            ticked.append(row);
        }
    }
    return ticked;
}

QPushButton *tst_FileTypesWidget::button(const QString &text) const
{
    const QList<QPushButton *> buttons = window->findChildren<QPushButton *>();
    for (QPushButton *const candidate : buttons) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

void tst_FileTypesWidget::press(const QString &text) const
{
    QTest::mouseClick(button(text), Qt::LeftButton);
}

void tst_FileTypesWidget::clickRow(int row) const
{
    list()->scrollToItem(list()->item(row));
    const QRect rect = list()->visualItemRect(list()->item(row));
    QTest::mouseClick(list()->viewport(),
                      Qt::LeftButton,
                      Qt::NoModifier,
                      QPoint(rect.left() + 60, rect.center().y()));
}

void tst_FileTypesWidget::clickCheckBox(int row) const
{
    list()->scrollToItem(list()->item(row));
    const QRect rect = list()->visualItemRect(list()->item(row));
    QTest::mouseClick(list()->viewport(),
                      Qt::LeftButton,
                      Qt::NoModifier,
                      QPoint(rect.left() + 10, rect.center().y()));
}

void tst_FileTypesWidget::answerQuestion(QMessageBox::StandardButton answer) const
{
    driver->expectMessageBox(QStringLiteral("Question"),
                             QStringLiteral("Are you sure?"),
                             QMessageBox::Yes | QMessageBox::No,
                             answer);
    press(QStringLiteral("Delete"));
    QCOMPARE(driver->failures(), QStringList());
}

QByteArray tst_FileTypesWidget::saved() const
{
    window->saveList();
    return TempTree::read(path(QStringLiteral("ftie.dat")));
}

FileTypesEditWidget *tst_FileTypesWidget::editor()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *const widget : widgets) {
        if (auto *const found = qobject_cast<FileTypesEditWidget *>(widget)) {
            return found;
        }
    }
    return nullptr;
}

void tst_FileTypesWidget::typeAndAccept(const QString &name, const QString &masks)
{
    const QList<QLineEdit *> fields = editor()->findChildren<QLineEdit *>();
    QTest::keyClick(fields.at(0), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(fields.at(0), name);
    QTest::keyClick(fields.at(1), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(fields.at(1), masks);
    QTest::mouseClick(editor()->findChildren<QPushButton *>().first(), Qt::LeftButton);
    QTRY_VERIFY(editor() == nullptr);
}

void tst_FileTypesWidget::firstStartMakesTheDefaultFile()
{
    // Without a data folder, folder and file are made, and nine rows show the file's lines.
    QVERIFY(QDir(home() + QStringLiteral("/.local")).removeRecursively());
    const QString file = dataFolder() + QStringLiteral("/ftie.dat");
    expectMessage(QtDebugMsg, QStringLiteral("SEE \"%1\"").arg(file));
    openWindow();
    QCOMPARE(rows().join(QString()), QString::fromUtf8(TempTree::read(file)));
    QCOMPARE(rows().size(), 9);
    QCOMPARE(rows().first(), QStringLiteral("Any File|*.*\n"));
    QVERIFY(rows().at(1).startsWith(
        QStringLiteral("Adobe Acrobat Files|*.PDFArchive Files|*.7Z;*.ACE;")));
    QCOMPARE(rows().at(1).count(QLatin1Char('|')), 2);
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("ftie.dat"))));
}

void tst_FileTypesWidget::rowsAreUntickedAndLeftAligned()
{
    // Each row has a box without a tick, and its text stands left and vertically centred.
    openWindow();
    for (int row = 0; row < list()->count(); ++row) {
        const QListWidgetItem *const item = list()->item(row);
        QCOMPARE(item->textAlignment(), 129);
        QCOMPARE(item->data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
        QVERIFY(item->flags().testFlag(Qt::ItemIsUserCheckable));
    }
    QCOMPARE(window->selectedTypes(), QStringList());
}

void tst_FileTypesWidget::layoutOfTheWindow()
{
    // Right of the list "Add", "Edit" and "Delete" stand below each other, "Close" below all.
    openWindow();
    QVERIFY(window->isWindow());
    QCOMPARE(window->windowTitle(), QStringLiteral("File Types"));
    QCOMPARE(window->findChildren<QPushButton *>().size(), 4);
    const QRect listRect = list()->geometry();
    const QRect add = button(QStringLiteral("Add"))->geometry();
    const QRect edit = button(QStringLiteral("Edit"))->geometry();
    const QRect remove = button(QStringLiteral("Delete"))->geometry();
    const QRect close = button(QStringLiteral("Close"))->geometry();
    QVERIFY(add.left() > listRect.right());
    QVERIFY(edit.top() > add.bottom() && remove.top() > edit.bottom());
    QVERIFY(remove.bottom() < listRect.center().y());
    QVERIFY(close.top() > listRect.bottom());
    QVERIFY(close.left() > window->width() / 2);
    QVERIFY(button(QStringLiteral("Add"))->isEnabled());
    QVERIFY(button(QStringLiteral("Close"))->isEnabled());
    QVERIFY(!button(QStringLiteral("Edit"))->isEnabled());
    QVERIFY(!button(QStringLiteral("Delete"))->isEnabled());
}

void tst_FileTypesWidget::focusChainFollowsTheLayout()
{
    // Tab goes from the list over the enabled buttons to "Close", Backtab the same way back.
    openWindow();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.data()));
    clickRow(1);
    const QList<QWidget *> chain = {list(),
                                    button(QStringLiteral("Add")),
                                    button(QStringLiteral("Edit")),
                                    button(QStringLiteral("Delete")),
                                    button(QStringLiteral("Close"))};
    chain.first()->setFocus();
    for (int i = 1; i < chain.size(); ++i) {
        QTest::keyClick(chain.at(i - 1), Qt::Key_Tab);
        QVERIFY(chain.at(i)->hasFocus());
    }
    for (auto i = chain.size() - 2; i >= 0; --i) {
        QTest::keyClick(chain.at(i + 1), Qt::Key_Backtab);
        QVERIFY(chain.at(i)->hasFocus());
    }
}

void tst_FileTypesWidget::defaultRowsFitTheScreen()
{
    // The window opens within the screen, and all nine rows are seen without scrolling down.
    openWindow();
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    QVERIFY(window->width() < screen.width() && window->height() < qMin(screen.height(), 768));
    for (int row = 0; row < 9; ++row) {
        const QRect rect = list()->visualItemRect(list()->item(row));
        QVERIFY(rect.top() >= 0 && rect.bottom() <= list()->viewport()->rect().bottom());
    }
    QVERIFY(!list()->verticalScrollBar()->isVisible());
    if (screen.width() >= 1366) {
        QVERIFY(window->width() < 1366);
        QVERIFY(!list()->horizontalScrollBar()->isVisible());
    }
}

void tst_FileTypesWidget::lineFeedTakesNoSecondLine()
{
    // A row whose text ends in a line feed is as high as one whose text does not.
    writeMaskFile("A|*.x\nB|*.y");
    openWindow();
    QCOMPARE(rows().first(), QStringLiteral("A|*.x\n"));
    QCOMPARE(list()->visualItemRect(list()->item(0)).height(),
             list()->visualItemRect(list()->item(1)).height());
}

void tst_FileTypesWidget::longListFitsTheScreen()
{
    // Neither many rows nor a row of many characters make a window larger than the screen.
    writeMaskFile(QByteArray(5000, 'x') + "\n" + QByteArray("A|*.x\n").repeated(1000));
    openWindow();
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    QVERIFY(window->width() < screen.width() && window->height() < screen.height());
}

void tst_FileTypesWidget::fileOfTheDataFolderIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("texts");
    const QString a = QStringLiteral("A|*.x");
    QTest::newRow("line feeds") << QByteArray("A|*.x\nA|*.x\n")
                                << QStringList{a + QLatin1Char('\n'), a + QLatin1Char('\n')};
    QTest::newRow("pairs") << QByteArray("A|*.x\r\n\r\n") << QStringList{a, QString()};
    QTest::newRow("zero byte") << QByteArray("A|*.x\0y\n", 8) << QStringList{a};
    QTest::newRow("no UTF-8") << QByteArray("\xfe|*.x")
                              << QStringList{QStringLiteral("\uFFFD|*.x")};
    QTest::newRow("mark-up") << QByteArray("<b>A</b>|*.x")
                             << QStringList{QStringLiteral("<b>A</b>|*.x")};
    QTest::newRow("empty file") << QByteArray() << QStringList();
}

void tst_FileTypesWidget::fileOfTheDataFolderIsRead()
{
    // The rows are the lines of the existing file, which is left as it is.
    QFETCH(const QByteArray, content);
    QFETCH(const QStringList, texts);
    writeMaskFile(content);
    openWindow();
    QCOMPARE(rows(), texts);
    QCOMPARE(TempTree::read(dataFolder() + QStringLiteral("/ftie.dat")), content);
}

void tst_FileTypesWidget::unreadableFileLeavesTheListEmpty_data()
{
    QTest::addColumn<bool>("fifo");
    QTest::newRow("folder") << false;
    QTest::newRow("FIFO") << true;
}

void tst_FileTypesWidget::unreadableFileLeavesTheListEmpty()
{
    // With a folder or a FIFO in the file's place the window opens at once, without rows.
    QFETCH(const bool, fifo);
    const TempTree data(dataFolder());
    fifo ? data.fifo(QStringLiteral("ftie.dat")) : data.folder(QStringLiteral("ftie.dat"));
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    openWindow();
    QCOMPARE(rows(), QStringList());
    QVERIFY(!button(QStringLiteral("Edit"))->isEnabled());
}

void tst_FileTypesWidget::forbiddenFileLeavesTheListEmpty()
{
    // A file without the right to read it leaves a log line and no rows.
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("the super-user reads every file here");
    }
    writeMaskFile("A|*.x\n");
    TempTree(dataFolder()).setMode(QStringLiteral("ftie.dat"), 0);
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    openWindow();
    QCOMPARE(rows(), QStringList());
}

void tst_FileTypesWidget::fileThatCannotBeMadeLeavesTheListEmpty()
{
    // With a file in the place of the data folder the log says why, and the list is empty.
    QVERIFY(QDir(home() + QStringLiteral("/.local/share")).removeRecursively());
    TempTree(home()).file(QStringLiteral(".local/share"));
    expectMessage(QtDebugMsg, QStringLiteral("\"Not a directory\""));
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    openWindow();
    QCOMPARE(rows(), QStringList());
}

void tst_FileTypesWidget::furtherFileIsAppended()
{
    // A further file adds its entries to those there are; one that is missing changes nothing.
    writeMaskFile("A|*.x\n");
    openWindow();
    const QString more = TempTree(path(QString())).file(QStringLiteral("more.dat"), "B|*.y\n");
    window->setTypesFilename(more);
    QCOMPARE(rows(), QStringList{QStringLiteral("A|*.x\n")});
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    window->setTypesFilename(path(QStringLiteral("missing.dat")));
    window->updateList();
    QCOMPARE(rows(), (QStringList{QStringLiteral("A|*.x\n"), QStringLiteral("B|*.y\n")}));
}

void tst_FileTypesWidget::hugeFileStillOpens()
{
    // A file of 100 MB, of one line without end, opens in seconds and shows its start.
    writeMaskFile(QByteArray(100 * 1024 * 1024, 'x'));
    QElapsedTimer timer;
    timer.start();
    openWindow();
    QVERIFY(timer.elapsed() < 10000);
    QCOMPARE(list()->count(), 1);
    QVERIFY(list()->item(0)->text().startsWith(QStringLiteral("xxxx")));
}

void tst_FileTypesWidget::firstRowCannotBeChanged_data()
{
    QTest::addColumn<bool>("byKeys");
    QTest::newRow("mouse") << false;
    QTest::newRow("keys") << true;
}

void tst_FileTypesWidget::firstRowCannotBeChanged()
{
    // "Edit" and "Delete" are enabled on every row but the first, however it became current.
    QFETCH(const bool, byKeys);
    openWindow();
    const auto move = [this, byKeys](int row, Qt::Key key) {
        byKeys ? QTest::keyClick(list(), key) : clickRow(row);
        return list()->currentRow() == row
            && button(QStringLiteral("Edit"))->isEnabled() == (row > 0)
            && button(QStringLiteral("Delete"))->isEnabled() == (row > 0);
    };
    QVERIFY(move(0, Qt::Key_Home));
    QVERIFY(move(1, Qt::Key_Down));
    QVERIFY(move(2, Qt::Key_Down));
    QVERIFY(move(1, Qt::Key_Up));
    QVERIFY(move(0, Qt::Key_Up));
    QVERIFY(move(8, Qt::Key_End));
}

void tst_FileTypesWidget::rowFoundByTypingDecides()
{
    // A row that becomes current by its first letter counts at once, as does the first row.
    openWindow();
    QTest::keyClick(list(), Qt::Key_P);
    QCOMPARE(list()->currentRow(), 5);
    QVERIFY(button(QStringLiteral("Edit"))->isEnabled());
    QVERIFY(button(QStringLiteral("Delete"))->isEnabled());
    list()->setCurrentRow(0);
    QVERIFY(!button(QStringLiteral("Edit"))->isEnabled());
    QVERIFY(!button(QStringLiteral("Delete"))->isEnabled());
    list()->setCurrentRow(1);
    QVERIFY(button(QStringLiteral("Edit"))->isEnabled());
    QVERIFY(button(QStringLiteral("Delete"))->isEnabled());
}

void tst_FileTypesWidget::anyFileIsExclusive()
{
    // Ticking "Any File" unticks all others, ticking another one unticks "Any File" alone.
    openWindow();
    clickCheckBox(3);
    clickCheckBox(6);
    QCOMPARE(tickedRows(), (QList<int>{3, 6}));
    clickCheckBox(0);
    QCOMPARE(tickedRows(), QList<int>{0});
    clickCheckBox(4);
    QCOMPARE(tickedRows(), QList<int>{4});
    clickCheckBox(4);
    QCOMPARE(tickedRows(), QList<int>());
}

void tst_FileTypesWidget::clickOnTheTextOfAnyFileUnticksTheOthers()
{
    // A click beside the box of "Any File" ticks nothing, yet unticks all other rows.
    openWindow();
    clickCheckBox(3);
    clickCheckBox(6);
    clickRow(0);
    QCOMPARE(tickedRows(), QList<int>());
}

void tst_FileTypesWidget::clickOnTheTextOfAnotherRowUnticksAnyFile()
{
    // A click beside another box ticks nothing, yet unticks every row that takes any file.
    writeMaskFile("Any|*.*\nA|*.x\nB|*.y\nAny too|*.*;*.z\n");
    openWindow();
    window->setCurrentMaskList(rows());
    clickRow(1);
    QCOMPARE(tickedRows(), (QList<int>{1, 2}));
}

void tst_FileTypesWidget::spaceTicksWithoutUntickingOthers()
{
    // The rule of the exclusive row belongs to clicks: the space bar ticks what it is told.
    openWindow();
    clickCheckBox(3);
    QTest::keyClick(list(), Qt::Key_Home);
    QTest::keyClick(list(), Qt::Key_Space);
    QCOMPARE(tickedRows(), (QList<int>{0, 3}));
}

void tst_FileTypesWidget::addAppendsAndLosesTicks()
{
    // A new entry stands at the end; all ticks, the current row and its buttons are gone.
    writeMaskFile("Any|*.*\nA|*.x\n");
    openWindow();
    clickCheckBox(1);
    clickRow(1);
    QVERIFY(button(QStringLiteral("Edit"))->isEnabled());
    press(QStringLiteral("Add"));
    QVERIFY(editor() != nullptr && editor()->isVisible() && editor()->parent() == nullptr);
    QCOMPARE(editor()->findChildren<QLineEdit *>().first()->text(), QString());
    typeAndAccept(QStringLiteral("B"), QStringLiteral("*.y"));
    QCOMPARE(rows(),
             (QStringList{QStringLiteral("Any|*.*\n"),
                          QStringLiteral("A|*.x\n"),
                          QStringLiteral("B|*.y")}));
    QCOMPARE(tickedRows(), QList<int>());
    QCOMPARE(list()->currentRow(), -1);
    QVERIFY(!button(QStringLiteral("Edit"))->isEnabled());
    QVERIFY(!button(QStringLiteral("Delete"))->isEnabled());
    QCOMPARE(saved(), QByteArray("Any|*.*\n\r\nA|*.x\n\r\nB|*.y\r\n"));
}

void tst_FileTypesWidget::addRefusesAWholeEntry()
{
    // The editor knows all entries: a name that is one of them is refused.
    writeMaskFile("Any|*.*\nLonely");
    openWindow();
    press(QStringLiteral("Add"));
    driver->expectMessageBox(
        QStringLiteral("Warning"),
        QStringLiteral("Mask with current name was created. Please, use another name."),
        QMessageBox::Ok,
        QMessageBox::Ok);
    const QList<QLineEdit *> fields = editor()->findChildren<QLineEdit *>();
    QTest::keyClicks(fields.at(0), QStringLiteral("Lonely"));
    QTest::keyClicks(fields.at(1), QStringLiteral("*.y"));
    QTest::mouseClick(editor()->findChildren<QPushButton *>().first(), Qt::LeftButton);
    QCOMPARE(driver->failures(), QStringList());
    QCOMPARE(rows().size(), 2);
}

void tst_FileTypesWidget::editMovesToTheEndAndLosesTicks()
{
    // An edited entry moves to the bottom, all ticks are gone, and nothing is current.
    writeMaskFile("Any|*.*\nA|*.x\nB|*.y\n");
    openWindow();
    clickCheckBox(2);
    clickRow(1);
    press(QStringLiteral("Edit"));
    const QList<QLineEdit *> fields = editor()->findChildren<QLineEdit *>();
    QCOMPARE(fields.at(0)->text(), QStringLiteral("A"));
    QCOMPARE(fields.at(1)->text(), QStringLiteral("*.x\n"));
    typeAndAccept(QStringLiteral("C"), QStringLiteral("*.z"));
    QCOMPARE(rows(),
             (QStringList{QStringLiteral("Any|*.*\n"),
                          QStringLiteral("B|*.y\n"),
                          QStringLiteral("C|*.z")}));
    QCOMPARE(tickedRows(), QList<int>());
    QVERIFY(!button(QStringLiteral("Edit"))->isEnabled());
    QVERIFY(!button(QStringLiteral("Delete"))->isEnabled());
}

void tst_FileTypesWidget::editReplacesAllEqualEntries()
{
    // Entries equal to the edited one go with it; one new entry takes their place at the end.
    writeMaskFile("Any|*.*\nA|*.x\nB|*.y\nA|*.x\n");
    openWindow();
    clickRow(1);
    press(QStringLiteral("Edit"));
    typeAndAccept(QStringLiteral("C"), QStringLiteral("*.z"));
    QCOMPARE(rows(),
             (QStringList{QStringLiteral("Any|*.*\n"),
                          QStringLiteral("B|*.y\n"),
                          QStringLiteral("C|*.z")}));
}

void tst_FileTypesWidget::editorMayOutliveTheWindow()
{
    // An editor left open after "Close" goes on alone and changes nothing any more.
    openWindow();
    press(QStringLiteral("Add"));
    press(QStringLiteral("Close"));
    QTRY_VERIFY(window.isNull());
    QVERIFY(editor()->isVisible());
    typeAndAccept(QStringLiteral("B"), QStringLiteral("*.y"));
    QVERIFY(!TempTree::read(path(QStringLiteral("ftie.dat"))).contains("B|*.y"));
}

void tst_FileTypesWidget::deleteAsksAndKeepsTheRow()
{
    // After Yes the entry is gone from what is saved; its row and all ticks stay.
    writeMaskFile("Any|*.*\nA|*.x\nB|*.y\n");
    openWindow();
    clickCheckBox(2);
    clickRow(1);
    const QStringList before = rows();
    answerQuestion(QMessageBox::Yes);
    QCOMPARE(rows(), before);
    QCOMPARE(tickedRows(), QList<int>{2});
    QCOMPARE(list()->currentRow(), 1);
    QCOMPARE(saved(), QByteArray("Any|*.*\n\r\nB|*.y\n\r\n"));
}

void tst_FileTypesWidget::deleteDeclinedKeepsTheEntry()
{
    // After No everything stays.
    writeMaskFile("Any|*.*\nA|*.x\n");
    openWindow();
    clickRow(1);
    answerQuestion(QMessageBox::No);
    QCOMPARE(saved(), QByteArray("Any|*.*\n\r\nA|*.x\n\r\n"));
}

void tst_FileTypesWidget::questionHasNoParent()
{
    // The question is a window of its own; closed without an answer it deletes nothing.
    writeMaskFile("Any|*.*\nA|*.x\n");
    openWindow();
    clickRow(1);
    driver->expect(
        QStringLiteral("Question"),
        [](QWidget *box) {
            return box->parentWidget() == nullptr ? QString() : QStringLiteral("it has a parent");
        },
        [](QWidget *box) { QTest::keyClick(box, Qt::Key_Escape); });
    press(QStringLiteral("Delete"));
    QCOMPARE(driver->failures(), QStringList());
    QCOMPARE(saved(), QByteArray("Any|*.*\n\r\nA|*.x\n\r\n"));
}

void tst_FileTypesWidget::rowBelowADeletedOneStandsForTheNextEntry()
{
    // After row 2 is deleted, row 3 opens the editor on the entry that row 4 shows.
    openWindow();
    clickRow(2);
    const QString deleted = rows().at(2);
    answerQuestion(QMessageBox::Yes);
    QCOMPARE(rows().at(2), deleted);
    clickRow(3);
    press(QStringLiteral("Edit"));
    QCOMPARE(editor()->findChildren<QLineEdit *>().first()->text(),
             rows().at(4).section(QLatin1Char('|'), 0, 0));
    QCOMPARE(editor()->findChildren<QLineEdit *>().first()->text(),
             QStringLiteral("Open Office Files"));
}

void tst_FileTypesWidget::rowWithoutEntryDoesNothing()
{
    // The last row stands for no entry after a deletion: it opens no editor and deletes nothing.
    writeMaskFile("Any|*.*\nA|*.x\nB|*.y\n");
    openWindow();
    clickRow(1);
    answerQuestion(QMessageBox::Yes);
    clickRow(2);
    press(QStringLiteral("Edit"));
    QVERIFY(editor() == nullptr);
    answerQuestion(QMessageBox::Yes);
    QCOMPARE(saved(), QByteArray("Any|*.*\n\r\nB|*.y\n\r\n"));
}

void tst_FileTypesWidget::currentMaskListTicksEqualRows()
{
    // Rows are ticked by their whole text alone, and no row is unticked.
    writeMaskFile("Any|*.*\nA|*.x\nB|*.y\nA|*.x\n\r\n");
    openWindow();
    window->setCurrentMaskList({QStringLiteral("B|*.y\n")});
    window->setCurrentMaskList({QStringLiteral("A|*.x\n"), QStringLiteral("Any|*.*")});
    QCOMPARE(tickedRows(), (QList<int>{1, 2, 3}));
    window->setCurrentMaskList({QString()});
    QCOMPARE(tickedRows(), (QList<int>{1, 2, 3, 4}));
}

void tst_FileTypesWidget::closeSavesThenTellsThenDeletes()
{
    // When the choice is told the list is saved in the working folder; later the window goes.
    writeMaskFile("Any|*.*\nA|*.x\n");
    openWindow();
    clickCheckBox(1);
    QByteArray savedBefore;
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    connect(window.data(), &FileTypesWidget::selectedTypesSignal, this, [&](const QStringList &) {
        savedBefore = TempTree::read(path(QStringLiteral("ftie.dat")));
    });
    expectMessage(QtDebugMsg, QStringLiteral("write \"Any|*.*\\n\\r\\n\""));
    expectMessage(QtDebugMsg, QStringLiteral("write \"A|*.x\\n\\r\\n\""));
    press(QStringLiteral("Close"));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().toStringList(), QStringList{QStringLiteral("A|*.x\n")});
    QCOMPARE(savedBefore, QByteArray("Any|*.*\n\r\nA|*.x\n\r\n"));
    QCOMPARE(TempTree::read(dataFolder() + QStringLiteral("/ftie.dat")),
             QByteArray("Any|*.*\nA|*.x\n"));
    QVERIFY(!window.isNull());
    QTRY_VERIFY(window.isNull());
}

void tst_FileTypesWidget::closeTellsTickedRowsFromTopToBottom()
{
    // The choice has the order of the rows, not that of the clicks.
    openWindow();
    const QStringList all = rows();
    clickCheckBox(6);
    clickCheckBox(2);
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    press(QStringLiteral("Close"));
    QCOMPARE(told.first().first().toStringList(), (QStringList{all.at(2), all.at(6)}));
}

void tst_FileTypesWidget::unwritablePlaceStillTells_data()
{
    QTest::addColumn<bool>("fifo");
    QTest::newRow("folder") << false;
    QTest::newRow("FIFO") << true;
}

void tst_FileTypesWidget::unwritablePlaceStillTells()
{
    // A place that cannot be written leaves a log line, and the choice is told all the same.
    QFETCH(const bool, fifo);
    openWindow();
    clickCheckBox(6);
    const TempTree work(path(QString()));
    fifo ? work.fifo(QStringLiteral("ftie.dat")) : work.folder(QStringLiteral("ftie.dat"));
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    press(QStringLiteral("Close"));
    QCOMPARE(told.first().first().toStringList(),
             QStringList{QStringLiteral("Text Files|*.TXT;*.RTF\n")});
    QTRY_VERIFY(window.isNull());
}

void tst_FileTypesWidget::readOnlyFileStillTells()
{
    // A file without the right to write it stays as it is, and the choice is told.
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("the super-user writes every file here");
    }
    const TempTree work(path(QString()));
    work.file(QStringLiteral("ftie.dat"), "Old|*.old\r\n");
    work.setMode(QStringLiteral("ftie.dat"), 0400);
    openWindow();
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    press(QStringLiteral("Close"));
    QCOMPARE(told.size(), 1);
    QCOMPARE(TempTree::read(path(QStringLiteral("ftie.dat"))), QByteArray("Old|*.old\r\n"));
}

void tst_FileTypesWidget::strangersFileStillTells_data()
{
    QTest::addColumn<bool>("isLink");
    QTest::newRow("file") << false;
    QTest::newRow("link") << true;
}

void tst_FileTypesWidget::strangersFileStillTells()
{
    // A file that is no list of types stays as it is, through a link too, and the choice is told.
    QFETCH(const bool, isLink);
    const TempTree work(path(QString()));
    const QString diary =
        work.file(isLink ? QStringLiteral("diary") : QStringLiteral("ftie.dat"), "Dear diary,\n");
    if (isLink) {
        work.link(QStringLiteral("ftie.dat"), diary);
    }
    openWindow();
    clickCheckBox(6);
    expectMessage(QtDebugMsg, QStringLiteral("Cannot open dat file"));
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    press(QStringLiteral("Close"));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().toStringList(),
             QStringList{QStringLiteral("Text Files|*.TXT;*.RTF\n")});
    QCOMPARE(TempTree::read(diary), QByteArray("Dear diary,\n"));
}

void tst_FileTypesWidget::savedFileIsReadWithEmptyEntries()
{
    // Where both places are one, each entry with a line feed is followed by an empty one.
    writeMaskFile("Any|*.*\nA|*.x\n");
    QVERIFY(QDir::setCurrent(dataFolder()));
    openWindow();
    press(QStringLiteral("Close"));
    QTRY_VERIFY(window.isNull());
    openWindow();
    QCOMPARE(rows(),
             (QStringList{QStringLiteral("Any|*.*\n"),
                          QString(),
                          QStringLiteral("A|*.x\n"),
                          QString()}));
}

void tst_FileTypesWidget::frameNeitherSavesNorTells()
{
    // Closed by its frame the window is only hidden: nothing is saved, nothing told.
    openWindow();
    clickCheckBox(1);
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    QVERIFY(window->close());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!window.isNull() && window->isHidden());
    QVERIFY(told.isEmpty());
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("ftie.dat"))));
}

void tst_FileTypesWidget::tenThousandEntries()
{
    // A list of 10,000 entries is shown, ticked and told whole.
    QByteArray content;
    for (int i = 0; i < 10000; ++i) {
        content += "Name " + QByteArray::number(i) + "|*.x" + QByteArray::number(i) + "\n";
    }
    writeMaskFile(content);
    openWindow();
    const QStringList all = rows();
    QCOMPARE(all.size(), 10000);
    window->setCurrentMaskList(all);
    clickRow(9999);
    QSignalSpy told(window.data(), SIGNAL(selectedTypesSignal(QStringList)));
    press(QStringLiteral("Close"));
    QCOMPARE(told.first().first().toStringList(), all);
    QCOMPARE(TempTree::read(path(QStringLiteral("ftie.dat"))), content.replace("\n", "\n\r\n"));
}

TWINSIFT_TEST_MAIN(tst_FileTypesWidget)
#include "tst_FileTypesWidget.moc"
