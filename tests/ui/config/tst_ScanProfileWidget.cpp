// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/config/ScanProfileWidget.h"
#include "ui/config/SpinBoxFileSize.h"
#include "ui/filetypes/FileTypesWidget.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace
{
const char *const sameBoxes[] = {"Same File Name", "Same File Extension", "Same Date Of Creation"};
const char *const hashBoxes[] = {"MD5 Hash", "SHA-1 Hash", "Cyclic Redundancy Check (CRC)"};
const char byteByByte[] = "Match Byte By Byte";
const char advanced[] = "Advanced Match";

QList<FileTypesWidget *> typeWindows()
{
    QList<FileTypesWidget *> found;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *const widget : widgets) {
        if (auto *const window = qobject_cast<FileTypesWidget *>(widget)) {
            found.append(window);
        }
    }
    return found;
}
} // namespace

class tst_ScanProfileWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;

    void freshPanel();
    void profileOfAFreshPanel();
    void givenProfileDoesNotSetTheControls();
    void toolTips();
    void layoutFromTopToBottom();
    void boxesAreIndentedByOneColumnOfTwenty();
    void focusChainFollowsTheLayout();
    void advancedModeChecksMd5();
    void sameBoxesKeepTheirTicks();
    void exactlyOneHashStaysChecked();
    void byteByByteModeClearsTheHashes();
    void sameBoxesReachTheProfile_data();
    void sameBoxesReachTheProfile();
    void disableCheckBoxesDisablesAll();
    void listsFillTheirOwnField();
    void masksOfTheFields_data();
    void masksOfTheFields();
    void includeButtonOpensTheWindowWithTheChoice();
    void excludeButtonOpensTheWindowWithTheChoice();
    void everyPressOpensAWindow();
    void windowMayOutliveThePanel();
    void chosenEntriesKeepTheirLineFeed();
    void emptyRowOfTheWindowIsTickedForAnEmptyField();
    void fieldHoldsTenThousandEntries();
    void sizeLimits();

private:
    QAbstractButton *control(const char *text) const;
    QLineEdit *includeField() const { return fields().at(0); }
    QLineEdit *excludeField() const { return fields().at(1); }
    QList<QLineEdit *> fields() const;
    QPushButton *pickButton(int index) const;
    SpinBoxFileSize *sizeInput(int index) const;
    void click(const char *text) const;
    void tickInWindow(int row) const;
    static void closeWindow();

    std::unique_ptr<ScanProfileWidget> panel;
};

void tst_ScanProfileWidget::init()
{
    TestCase::init();
    allowMessages(QRegularExpression(QStringLiteral("^(SEE|write) ")));
    panel = std::make_unique<ScanProfileWidget>(ScanProfile(), nullptr);
    panel->show();
}

void tst_ScanProfileWidget::cleanup()
{
    panel.reset();
    qDeleteAll(typeWindows());
    TestCase::cleanup();
}

QAbstractButton *tst_ScanProfileWidget::control(const char *text) const
{
    const QList<QAbstractButton *> buttons = panel->findChildren<QAbstractButton *>();
    for (QAbstractButton *const candidate : buttons) {
        if (candidate->text() == QLatin1String(text)) {
            return candidate;
        }
    }
    qFatal("no control \"%s\"", text);
}

QList<QLineEdit *> tst_ScanProfileWidget::fields() const
{
    return panel->findChildren<QLineEdit *>(QString(), Qt::FindDirectChildrenOnly);
}

QPushButton *tst_ScanProfileWidget::pickButton(int index) const
{
    return panel->findChildren<QPushButton *>().at(index);
}

SpinBoxFileSize *tst_ScanProfileWidget::sizeInput(int index) const
{
    return panel->findChildren<SpinBoxFileSize *>().at(index);
}

void tst_ScanProfileWidget::click(const char *text) const
{
    QAbstractButton *const target = control(text);
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, QPoint(8, target->height() / 2));
}

void tst_ScanProfileWidget::tickInWindow(int row) const
{
    QCOMPARE(typeWindows().size(), 1);
    FileTypesWidget *const window = typeWindows().first();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    auto *const list = window->findChild<QListWidget *>();
    const QRect rect = list->visualItemRect(list->item(row));
    QTest::mouseClick(list->viewport(),
                      Qt::LeftButton,
                      Qt::NoModifier,
                      QPoint(rect.left() + 10, rect.center().y()));
}

void tst_ScanProfileWidget::closeWindow()
{
    const QList<QPushButton *> buttons = typeWindows().first()->findChildren<QPushButton *>();
    QCOMPARE(buttons.last()->text(), QStringLiteral("Close"));
    QTest::mouseClick(buttons.last(), Qt::LeftButton);
    QTRY_VERIFY(typeWindows().isEmpty());
}

void tst_ScanProfileWidget::freshPanel()
{
    // A fresh panel matches byte by byte, takes any file, leaves none out and has no limits.
    QVERIFY(control(byteByByte)->isChecked() && !control(advanced)->isChecked());
    for (const char *const text : sameBoxes) {
        QVERIFY(control(text)->isEnabled() && !control(text)->isChecked());
    }
    for (const char *const text : hashBoxes) {
        QVERIFY(!control(text)->isEnabled() && !control(text)->isChecked());
    }
    QCOMPARE(includeField()->text(), QStringLiteral("Any File|*.*"));
    QCOMPARE(excludeField()->text(), QString());
    QVERIFY(includeField()->isReadOnly() && excludeField()->isReadOnly());
    QCOMPARE(pickButton(0)->text(), QStringLiteral("..."));
    QCOMPARE(pickButton(1)->text(), QStringLiteral("..."));
    QVERIFY(pickButton(0)->accessibleName() != pickButton(1)->accessibleName());
    control("Minimum size:");
    control("Maximum size:");
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!sizeInput(i)->isChecked());
        QVERIFY(!sizeInput(i)->findChild<QDoubleSpinBox *>()->isEnabled());
        QVERIFY(!sizeInput(i)->findChild<QComboBox *>()->isEnabled());
    }
}

void tst_ScanProfileWidget::profileOfAFreshPanel()
{
    // The profile of a fresh panel: byte by byte, every file, nothing else.
    const ScanProfile profile = panel->currentScanProfile();
    QVERIFY(profile.matchByteByByte && !profile.advancedMatch);
    QVERIFY(!profile.sameFileName && !profile.sameFileExtension && !profile.sameDateOfCreation);
    QVERIFY(!profile.md5Hash && !profile.sha1Hash && !profile.crcHash);
    QCOMPARE(profile.includeMasks, QStringList{QStringLiteral("*.*")});
    QCOMPARE(profile.excludeMasks, QStringList());
    QVERIFY(!profile.minSizeEnabled && !profile.maxSizeEnabled);
    QCOMPARE(profile.minSizeInKbytes, 0);
    QCOMPARE(profile.maxSizeInKbytes, 0);
}

void tst_ScanProfileWidget::givenProfileDoesNotSetTheControls()
{
    // Whatever profile the panel is given, its controls start from the same defaults.
    ScanProfile profile;
    profile.matchByteByByte = false;
    profile.advancedMatch = true;
    profile.crcHash = true;
    profile.sameFileName = true;
    profile.minSizeEnabled = true;
    profile.minSizeInKbytes = 5;
    profile.excludeMasks = QStringList{QStringLiteral("*.x")};
    panel = std::make_unique<ScanProfileWidget>(profile, nullptr);
    freshPanel();
    profileOfAFreshPanel();
}

void tst_ScanProfileWidget::toolTips()
{
    // The three boxes of the byte-by-byte mode explain themselves, no other control does.
    QCOMPARE(control("Same File Name")->toolTip(),
             QStringLiteral("If this option is enabled, software finds duplicates only with same "
                            "names in different folders."));
    QCOMPARE(
        control("Same File Extension")->toolTip(),
        QStringLiteral(
            "If this option is enabled, software finds duplicates only with same extensions."));
    QCOMPARE(control("Same Date Of Creation")->toolTip(),
             QStringLiteral("If this option is enabled, software finds duplicates only with same "
                            "date of creation."));
    int toolTips = 0;
    const QList<QWidget *> widgets = panel->findChildren<QWidget *>();
    for (const QWidget *const widget : widgets) {
        toolTips += widget->toolTip().isEmpty() ? 0 : 1;
    }
    QCOMPARE(toolTips, 3);
}

void tst_ScanProfileWidget::layoutFromTopToBottom()
{
    // Both modes with their indented boxes, the types and the limits stand below each other.
    const QList<QLabel *> labels =
        panel->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(labels.at(0)->text(), QStringLiteral("File Types Include:"));
    QCOMPARE(labels.at(1)->text(), QStringLiteral("File Types Exclude:"));
    QCOMPARE(labels.at(0)->buddy(), includeField());
    QCOMPARE(labels.at(1)->buddy(), excludeField());
    QList<QWidget *> column = {control(byteByByte)};
    for (const char *const text : sameBoxes) {
        column.append(control(text));
        QVERIFY(control(text)->x() > control(byteByByte)->x());
    }
    column.append(control(advanced));
    for (const char *const text : hashBoxes) {
        column.append(control(text));
        QVERIFY(control(text)->x() > control(advanced)->x());
    }
    column +=
        {labels.at(0), includeField(), labels.at(1), excludeField(), sizeInput(0), sizeInput(1)};
    for (int i = 1; i < column.size(); ++i) {
        QVERIFY(column.at(i)->y() > column.at(i - 1)->geometry().bottom());
    }
    for (int i = 0; i < 2; ++i) {
        QVERIFY(pickButton(i)->x() > fields().at(i)->geometry().right());
        QVERIFY(
            qAbs(pickButton(i)->geometry().center().y() - fields().at(i)->geometry().center().y())
            <= 1);
    }
    QCOMPARE(sizeInput(0)->findChild<QAbstractButton *>()->text(), QStringLiteral("Minimum size:"));
    QCOMPARE(sizeInput(1)->findChild<QAbstractButton *>()->text(), QStringLiteral("Maximum size:"));
}

void tst_ScanProfileWidget::boxesAreIndentedByOneColumnOfTwenty()
{
    // Each mode is a grid: its radio button spans all columns, its boxes all but the first.
    for (int mode = 0; mode < 2; ++mode) {
        const auto *const grid =
            qobject_cast<QGridLayout *>(panel->layout()->itemAt(mode)->layout());
        QVERIFY(grid != nullptr);
        QList<QWidget *> column = {control(mode == 0 ? byteByByte : advanced)};
        for (const char *const text : (mode == 0 ? sameBoxes : hashBoxes)) {
            column.append(control(text));
        }
        QCOMPARE(grid->count(), column.size());
        for (int i = 0; i < column.size(); ++i) {
            int row = -1;
            int first = -1;
            int rows = 0;
            int columns = 0;
            grid->getItemPosition(grid->indexOf(column.at(i)), &row, &first, &rows, &columns);
            const int indent = i == 0 ? 0 : 1;
            QCOMPARE((QList<int>{row, first, rows, columns}),
                     (QList<int>{i, indent, 1, 20 - indent}));
        }
    }
}

void tst_ScanProfileWidget::focusChainFollowsTheLayout()
{
    // Tab visits the enabled controls from top to bottom, Backtab the same way back.
    panel->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(panel.get()));
    sizeInput(0)->setChecked(true);
    QList<QWidget *> chain = {control(byteByByte)};
    for (const char *const text : sameBoxes) {
        chain.append(control(text));
    }
    chain += {includeField(), pickButton(0), excludeField(), pickButton(1)};
    chain += {control("Minimum size:"),
              sizeInput(0)->findChild<QDoubleSpinBox *>(),
              sizeInput(0)->findChild<QComboBox *>(),
              control("Maximum size:")};
    chain.first()->setFocus();
    for (int i = 1; i < chain.size(); ++i) {
        QTest::keyClick(chain.at(i - 1), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), chain.at(i));
    }
    for (auto i = chain.size() - 2; i >= 0; --i) {
        QTest::keyClick(chain.at(i + 1), Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), chain.at(i));
    }
}

void tst_ScanProfileWidget::advancedModeChecksMd5()
{
    // Advanced Match enables the hashes, disables the other boxes and always begins with MD5.
    click(advanced);
    QVERIFY(control(advanced)->isChecked() && !control(byteByByte)->isChecked());
    for (const char *const text : sameBoxes) {
        QVERIFY(!control(text)->isEnabled());
    }
    for (const char *const text : hashBoxes) {
        QVERIFY(control(text)->isEnabled());
    }
    QVERIFY(control("MD5 Hash")->isChecked());
    const ScanProfile profile = panel->currentScanProfile();
    QVERIFY(profile.advancedMatch && !profile.matchByteByByte);
    QVERIFY(profile.md5Hash && !profile.sha1Hash && !profile.crcHash);
    click("Cyclic Redundancy Check (CRC)");
    click(byteByByte);
    click(advanced);
    QVERIFY(control("MD5 Hash")->isChecked());
    QVERIFY(!control("Cyclic Redundancy Check (CRC)")->isChecked());
}

void tst_ScanProfileWidget::sameBoxesKeepTheirTicks()
{
    // A ticked box does not count in Advanced Match, stays ticked, and counts again afterwards.
    click("Same File Name");
    QVERIFY(panel->currentScanProfile().sameFileName);
    click(advanced);
    QVERIFY(control("Same File Name")->isChecked());
    QVERIFY(!panel->currentScanProfile().sameFileName);
    click(byteByByte);
    QVERIFY(control("Same File Name")->isChecked() && control("Same File Name")->isEnabled());
    QVERIFY(panel->currentScanProfile().sameFileName);
}

void tst_ScanProfileWidget::exactlyOneHashStaysChecked()
{
    // A click on a hash leaves it as the only one, also when it was checked before.
    click(advanced);
    const auto hashes = [this] {
        const ScanProfile profile = panel->currentScanProfile();
        return QList<bool>{profile.md5Hash, profile.sha1Hash, profile.crcHash};
    };
    click("SHA-1 Hash");
    QCOMPARE(hashes(), (QList<bool>{false, true, false}));
    click("SHA-1 Hash");
    QCOMPARE(hashes(), (QList<bool>{false, true, false}));
    QTest::keyClick(control("Cyclic Redundancy Check (CRC)"), Qt::Key_Space);
    QCOMPARE(hashes(), (QList<bool>{false, false, true}));
    click("MD5 Hash");
    QCOMPARE(hashes(), (QList<bool>{true, false, false}));
}

void tst_ScanProfileWidget::byteByByteModeClearsTheHashes()
{
    // Back in the byte-by-byte mode no hash is checked, and none reaches the profile.
    click(advanced);
    click("SHA-1 Hash");
    click(byteByByte);
    for (const char *const text : hashBoxes) {
        QVERIFY(!control(text)->isChecked() && !control(text)->isEnabled());
    }
    const ScanProfile profile = panel->currentScanProfile();
    QVERIFY(profile.matchByteByByte && !profile.advancedMatch);
    QVERIFY(!profile.md5Hash && !profile.sha1Hash && !profile.crcHash);
    // A box that were checked all the same would reach it: the mode is not asked.
    control("SHA-1 Hash")->setChecked(true);
    QVERIFY(panel->currentScanProfile().sha1Hash);
}

void tst_ScanProfileWidget::sameBoxesReachTheProfile_data()
{
    QTest::addColumn<int>("box");
    for (int box = 0; box < 3; ++box) {
        QTest::newRow(sameBoxes[box]) << box;
    }
}

void tst_ScanProfileWidget::sameBoxesReachTheProfile()
{
    // Each box sets its own field.
    QFETCH(const int, box);
    click(sameBoxes[box]);
    const ScanProfile profile = panel->currentScanProfile();
    QCOMPARE(profile.sameFileName, box == 0);
    QCOMPARE(profile.sameFileExtension, box == 1);
    QCOMPARE(profile.sameDateOfCreation, box == 2);
}

void tst_ScanProfileWidget::disableCheckBoxesDisablesAll()
{
    // All six boxes are disabled and keep their state; the modes stay enabled.
    click("Same File Name");
    panel->disableCheckBoxes();
    for (int i = 0; i < 3; ++i) {
        QVERIFY(!control(sameBoxes[i])->isEnabled() && !control(hashBoxes[i])->isEnabled());
    }
    QVERIFY(control("Same File Name")->isChecked());
    QVERIFY(control(byteByByte)->isEnabled() && control(advanced)->isEnabled());
}

void tst_ScanProfileWidget::listsFillTheirOwnField()
{
    // A list fills the one field it is for, and the same type may stand in both.
    const QString a = QStringLiteral("A|*.x\n");
    const QString b = QStringLiteral("B|*.y;*.z");
    panel->onExcludeListChanged({a, b});
    QCOMPARE(excludeField()->text(), QStringLiteral("A|*.x\n, B|*.y;*.z"));
    QCOMPARE(includeField()->text(), QStringLiteral("Any File|*.*"));
    panel->onIncludeListChanged({QString(), b, QString(), a});
    QCOMPARE(includeField()->text(), QStringLiteral("B|*.y;*.z, A|*.x\n"));
    QCOMPARE(excludeField()->text(), QStringLiteral("A|*.x\n, B|*.y;*.z"));
    const ScanProfile profile = panel->currentScanProfile();
    QCOMPARE(profile.includeMasks,
             (QStringList{QStringLiteral("*.y"), QStringLiteral("*.z"), QStringLiteral("*.x\n")}));
    QCOMPARE(profile.excludeMasks,
             (QStringList{QStringLiteral("*.x\n"), QStringLiteral("*.y"), QStringLiteral("*.z")}));
    panel->onIncludeListChanged({});
    QCOMPARE(includeField()->text(), QString());
    QCOMPARE(panel->currentScanProfile().includeMasks, QStringList());
}

void tst_ScanProfileWidget::masksOfTheFields_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QStringList>("masks");
    QTest::newRow("semicolon at the end")
        << QStringList{QStringLiteral("Images|*.jpg;*.png;")}
        << QStringList{QStringLiteral("*.jpg"), QStringLiteral("*.png"), QString()};
    QTest::newRow("no bar") << QStringList{QStringLiteral("*.jpg")} << QStringList();
    QTest::newRow("two bars, then one")
        << QStringList{QStringLiteral("A|*.xB|*.y"), QStringLiteral("C|*.z")}
        << QStringList{QStringLiteral("*.z")};
    QTest::newRow("comma and space in an entry")
        << QStringList{QStringLiteral("A, B|*.x, *.y")} << QStringList{QStringLiteral("*.x")};
}

void tst_ScanProfileWidget::masksOfTheFields()
{
    // Well-formed entries give all their pieces, the others nothing, for both fields alike.
    QFETCH(const QStringList, entries);
    QFETCH(const QStringList, masks);
    panel->onIncludeListChanged(entries);
    panel->onExcludeListChanged(entries);
    QCOMPARE(panel->currentScanProfile().includeMasks, masks);
    QCOMPARE(panel->currentScanProfile().excludeMasks, masks);
}

void tst_ScanProfileWidget::includeButtonOpensTheWindowWithTheChoice()
{
    // The window opens with the field's entries ticked, and its new choice fills the field.
    const QString text = QStringLiteral("Text Files|*.TXT;*.RTF\n");
    const QString open = QStringLiteral("Open Office Files|*.ODT;*.ODS;*.ODG;*.ODP;*.ODM;*.ODF\n");
    panel->onIncludeListChanged({text});
    QTest::mouseClick(pickButton(0), Qt::LeftButton);
    QCOMPARE(typeWindows().size(), 1);
    QVERIFY(typeWindows().first()->isVisible() && typeWindows().first()->parent() == nullptr);
    QCOMPARE(typeWindows().first()->selectedTypes(), QStringList{text});
    tickInWindow(4);
    QCOMPARE(includeField()->text(), text);
    closeWindow();
    QCOMPARE(includeField()->text(), open + QStringLiteral(", ") + text);
    QCOMPARE(excludeField()->text(), QString());
}

void tst_ScanProfileWidget::excludeButtonOpensTheWindowWithTheChoice()
{
    // The exclude button does the same for its own field.
    const QString text = QStringLiteral("Text Files|*.TXT;*.RTF\n");
    QTest::mouseClick(pickButton(1), Qt::LeftButton);
    QCOMPARE(typeWindows().first()->selectedTypes(), QStringList());
    tickInWindow(6);
    closeWindow();
    QCOMPARE(excludeField()->text(), text);
    QCOMPARE(includeField()->text(), QStringLiteral("Any File|*.*"));
    QCOMPARE(panel->currentScanProfile().excludeMasks,
             (QStringList{QStringLiteral("*.TXT"), QStringLiteral("*.RTF\n")}));
    QTest::keyClick(pickButton(1), Qt::Key_Space);
    QCOMPARE(typeWindows().first()->selectedTypes(), QStringList{text});
    tickInWindow(6);
    closeWindow();
    QCOMPARE(excludeField()->text(), QString());
}

void tst_ScanProfileWidget::everyPressOpensAWindow()
{
    // Each press opens one more window; the one closed last decides.
    QTest::mouseClick(pickButton(0), Qt::LeftButton);
    QTest::mouseClick(pickButton(0), Qt::LeftButton);
    QTest::mouseClick(pickButton(1), Qt::LeftButton);
    QCOMPARE(typeWindows().size(), 3);
}

void tst_ScanProfileWidget::windowMayOutliveThePanel()
{
    // A window that is closed after the panel is gone still saves and goes.
    QTest::mouseClick(pickButton(0), Qt::LeftButton);
    panel.reset();
    closeWindow();
    QVERIFY(QFile::exists(path(QStringLiteral("ftie.dat"))));
}

void tst_ScanProfileWidget::chosenEntriesKeepTheirLineFeed()
{
    // The line feed of a chosen entry stays in its last mask, which then matches no file.
    QTest::mouseClick(pickButton(0), Qt::LeftButton);
    tickInWindow(5);
    closeWindow();
    const QStringList photos = panel->currentScanProfile().includeMasks;
    QCOMPARE(photos.size(), 25);
    QCOMPARE(photos.first(), QStringLiteral("*.BMP"));
    QCOMPARE(photos.last(), QStringLiteral("*.WMF\n"));
    const TempTree tree(path(QStringLiteral("pictures")));
    tree.file(QStringLiteral("a.bmp"));
    tree.file(QStringLiteral("b.wmf"));
    QCOMPARE(QDir(tree.root()).entryList(photos, QDir::Files),
             QStringList{QStringLiteral("a.bmp")});
    QTest::mouseClick(pickButton(0), Qt::LeftButton);
    tickInWindow(0);
    closeWindow();
    const QStringList any = panel->currentScanProfile().includeMasks;
    QCOMPARE(any, QStringList{QStringLiteral("*.*\n")});
    QCOMPARE(QDir(tree.root()).entryList(any, QDir::Files), QStringList());
}

void tst_ScanProfileWidget::emptyRowOfTheWindowIsTickedForAnEmptyField()
{
    // An empty field is one empty entry: it ticks empty rows, which leave no trace when chosen.
    const TempTree data(home() + QStringLiteral("/.local/share/tst_ScanProfileWidget"));
    data.file(QStringLiteral("ftie.dat"), "Any File|*.*\n\r\nA|*.x\n");
    QTest::mouseClick(pickButton(1), Qt::LeftButton);
    QCOMPARE(typeWindows().first()->selectedTypes(), QStringList{QString()});
    tickInWindow(2);
    closeWindow();
    QCOMPARE(excludeField()->text(), QStringLiteral("A|*.x\n"));
}

void tst_ScanProfileWidget::fieldHoldsTenThousandEntries()
{
    // A choice longer than a line edit usually holds arrives whole.
    QStringList entries;
    QStringList masks;
    for (int i = 0; i < 10000; ++i) {
        masks.append(QStringLiteral("*.x%1\n").arg(i));
        entries.append(QStringLiteral("Name %1|%2").arg(i).arg(masks.last()));
    }
    panel->onIncludeListChanged(entries);
    QCOMPARE(panel->currentScanProfile().includeMasks, masks);
}

void tst_ScanProfileWidget::sizeLimits()
{
    // A limit reaches the profile while it is on; off, its size is 0 whatever it shows.
    click("Minimum size:");
    QTest::keyClicks(sizeInput(0)->findChild<QComboBox *>(), QStringLiteral("M"));
    auto *const minimum = sizeInput(0)->findChild<QDoubleSpinBox *>();
    minimum->selectAll();
    QTest::keyClicks(minimum, QStringLiteral("1.5"));
    ScanProfile profile = panel->currentScanProfile();
    QVERIFY(profile.minSizeEnabled && !profile.maxSizeEnabled);
    QCOMPARE(profile.minSizeInKbytes, 1536);
    QCOMPARE(profile.maxSizeInKbytes, 0);
    click("Maximum size:");
    auto *const maximum = sizeInput(1)->findChild<QDoubleSpinBox *>();
    maximum->selectAll();
    QTest::keyClicks(maximum, QStringLiteral("7"));
    click("Minimum size:");
    profile = panel->currentScanProfile();
    QVERIFY(!profile.minSizeEnabled && profile.maxSizeEnabled);
    QCOMPARE(minimum->value(), 1.5);
    QCOMPARE(profile.minSizeInKbytes, 0);
    QCOMPARE(profile.maxSizeInKbytes, 7);
    click("Maximum size:");
    profile = panel->currentScanProfile();
    QVERIFY(!profile.minSizeEnabled && !profile.maxSizeEnabled);
    QCOMPARE(maximum->value(), 7.0);
    QCOMPARE(profile.maxSizeInKbytes, 0);
}

TWINSIFT_TEST_MAIN(tst_ScanProfileWidget)
#include "tst_ScanProfileWidget.moc"
