// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "engine/Configuration.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/config/FolderTreeDriver.h"
#include "ui/config/FileSystemTreeModel.h"
#include "ui/config/FileSystemTreeWidget.h"
#include "ui/config/ScanConfigurationWidget.h"
#include "ui/config/ScanProfileWidget.h"
#include "ui/config/SpinBoxFileSize.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTreeView>
#include <QVBoxLayout>

#include <memory>

#define TRY_VERIFY(condition) \
    QTRY_VERIFY_WITH_TIMEOUT(condition, FolderTreeDriver::loadMilliseconds)

namespace
{
// All fields, so that one which is left out of a comparison cannot be forgotten here alone.
QString textOf(const ScanProfile &profile)
{
    const QList<bool> switches = {profile.matchByteByByte,
                                  profile.sameFileName,
                                  profile.sameFileExtension,
                                  profile.sameDateOfCreation,
                                  profile.advancedMatch,
                                  profile.crcHash,
                                  profile.md5Hash,
                                  profile.sha1Hash,
                                  profile.minSizeEnabled,
                                  profile.maxSizeEnabled};
    QString text;
    for (const bool isOn : switches) {
        text += isOn ? QLatin1Char('1') : QLatin1Char('0');
    }
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(text)
        .arg(profile.minSizeInKbytes)
        .arg(profile.maxSizeInKbytes)
        .arg(profile.includeMasks.join(QLatin1Char(';')),
             profile.excludeMasks.join(QLatin1Char(';')));
}
} // namespace

class tst_ScanConfigurationWidget final : public TestCase
{
    Q_OBJECT

protected slots:
    void init() override;
    void cleanup() override;

private slots:
    void layoutAndTexts();
    void columnsHaveStraightEdges();
    void onlyOneSlotIsDeclared();
    void treeTakesTheFocusOfItsButton();
    void buttonIsMeasuredByTheWindowAtConstruction();
    void withoutAFolderThereIsOneWarning();
    void withoutAMaskThereIsAnotherWarning();
    void warningsLeaveTheSettingsAlone();
    void startStoresFoldersAndProfileAndChangesThePage();
    void tickedDescendantsAreNotStored();
    void secondStartReplacesTheFirst();
    void startByKey();
    void pressWithinAScanStartsNothing();

private:
    QPushButton *startButton() const;
    void openTree();
    void pressStart();
    void expectWarning(ModalDriver *modals, const char *text) const;
    void clearMasks();

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<QStackedWidget> pages;
    std::unique_ptr<FolderTreeDriver> driver;
    ScanConfigurationWidget *page = nullptr;
    Configuration *const configuration = Configuration::instance();
};

// The page stands in a stack of its own: what the window does with a start shows in the window's
// stack, whatever its pages are.
void tst_ScanConfigurationWidget::init()
{
    TestCase::init();
    configuration->folders = QStringList(QStringLiteral("/previous"));
    configuration->scanProfile = ScanProfile();
    configuration->scanProfile.minSizeInKbytes = 77;
    tree = std::make_unique<TempTree>(path(QStringLiteral("root")));
    window = std::make_unique<MainWindow>();
    page = new ScanConfigurationWidget(window.get());
    pages = std::make_unique<QStackedWidget>();
    pages->addWidget(page);
    pages->addWidget(new QWidget);
    driver = std::make_unique<FolderTreeDriver>(page);
    pages->resize(1000, 700);
    pages->show();
    QVERIFY(QTest::qWaitForWindowExposed(pages.get()));
}

void tst_ScanConfigurationWidget::cleanup()
{
    driver.reset();
    pages.reset();
    window.reset();
    TestCase::cleanup();
}

QPushButton *tst_ScanConfigurationWidget::startButton() const
{
    for (QPushButton *const button : page->findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Start scan")) {
            return button;
        }
    }
    return nullptr;
}

void tst_ScanConfigurationWidget::openTree()
{
    for (const char *name : {"a/inner", "b", "c"}) {
        tree->folder(QLatin1String(name));
    }
    QCOMPARE(driver->choose(tree->root()).join(QLatin1Char('\n')), QString());
    TRY_VERIFY(driver->isSettledAt(tree->root()));
}

void tst_ScanConfigurationWidget::pressStart()
{
    QTest::mouseClick(startButton(), Qt::LeftButton);
}

void tst_ScanConfigurationWidget::expectWarning(ModalDriver *modals, const char *text) const
{
    modals->expectMessageBox(QStringLiteral("Warning"),
                             QString::fromLatin1(text),
                             QMessageBox::Ok,
                             QMessageBox::Ok);
}

void tst_ScanConfigurationWidget::clearMasks()
{
    QVERIFY(QMetaObject::invokeMethod(page->findChild<ScanProfileWidget *>(),
                                      "onIncludeListChanged",
                                      Q_ARG(QStringList, QStringList())));
}

void tst_ScanConfigurationWidget::layoutAndTexts()
{
    // The tree on the left; options, a stretch and the button on the right.
    const auto *const layout = qobject_cast<QHBoxLayout *>(page->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->count(), 2);
    QVERIFY(qobject_cast<FileSystemTreeWidget *>(layout->itemAt(0)->widget()) != nullptr);
    const auto *const right = qobject_cast<QVBoxLayout *>(layout->itemAt(1)->layout());
    QVERIFY(right != nullptr);
    QCOMPARE(right->count(), 3);
    QVERIFY(qobject_cast<ScanProfileWidget *>(right->itemAt(0)->widget()) != nullptr);
    QVERIFY(right->itemAt(1)->spacerItem() != nullptr);
    QVERIFY(startButton() != nullptr);
    QCOMPARE(right->itemAt(2)->widget(), startButton());
    QCOMPARE(layout->stretch(0), 0);
    QCOMPARE(layout->stretch(1), 0);
    const QPixmap picture(QStringLiteral(":/content/start.png"));
    QVERIFY(!picture.isNull());
    QCOMPARE(startButton()->icon().pixmap(picture.size()).toImage(), picture.toImage());
}

void tst_ScanConfigurationWidget::columnsHaveStraightEdges()
{
    // The options end where the button does on both sides, and begin level with the tree.
    openTree();
    const auto place = [this](const QWidget *widget) {
        return QRect(widget->mapTo(page, QPoint()), widget->size());
    };
    const QRect button = place(startButton());
    const QRect limit = place(page->findChildren<SpinBoxFileSize *>().last());
    QCOMPARE(limit.left(), button.left());
    QCOMPARE(limit.right(), button.right());
    const QRect options = place(page->findChild<QRadioButton *>());
    const QRect view = place(driver->view());
    const auto *const caption = driver->view()->parentWidget()->findChild<QLabel *>();
    QCOMPARE(options.left(), button.left());
    QCOMPARE(options.top(), place(caption).top());
    QCOMPARE(view.left(), page->layout()->contentsRect().left());
    QCOMPARE(view.bottom(), button.bottom());
    QVERIFY(button.left() - view.right() > 20);
}

void tst_ScanConfigurationWidget::onlyOneSlotIsDeclared()
{
    // Nothing but the press of the button.
    const QMetaObject *const meta = page->metaObject();
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 1);
    QCOMPARE(meta->method(meta->methodOffset()).methodSignature(),
             QByteArrayLiteral("onScanButtonClicked()"));
}

void tst_ScanConfigurationWidget::treeTakesTheFocusOfItsButton()
{
    // After the choice of a folder the keys go to the tree, not to the options.
    driver->button()->setFocus();
    openTree();
    QCOMPARE(pages->focusWidget(), driver->view());
}

void tst_ScanConfigurationWidget::buttonIsMeasuredByTheWindowAtConstruction()
{
    // Half the width and an eighth of the height, rounded down; later sizes change nothing.
    window->setMinimumSize(0, 0);
    window->resize(641, 487);
    const int width = window->width();
    const int height = window->height();
    auto *const other = new ScanConfigurationWidget(window.get());
    QPushButton *button = nullptr;
    for (QPushButton *const candidate : other->findChildren<QPushButton *>()) {
        button = candidate->text() == QLatin1String("Start scan") ? candidate : button;
    }
    QVERIFY(button != nullptr);
    QCOMPARE(button->minimumSize(), QSize(width / 2, height / 8));
    window->resize(1300, 1500);
    QCOMPARE(button->minimumSize(), QSize(width / 2, height / 8));
}

void tst_ScanConfigurationWidget::withoutAFolderThereIsOneWarning()
{
    // The folder comes first, also where the masks are missing too; no page changes. Both warnings
    // stand before the page.
    const int shown = window->findChild<QStackedWidget *>()->currentIndex();
    clearMasks();
    for (const bool hasTree : {false, true}) {
        if (hasTree) {
            openTree();
        }
        ModalDriver modals;
        expectWarning(&modals, "You didn't select any folder");
        pressStart();
        QCOMPARE(modals.failures().join(QLatin1Char('\n')), QString());
        QCOMPARE(modals.parents(), QList<QWidget *>({page}));
    }
    QCOMPARE(configuration->folders, QStringList(QStringLiteral("/previous")));
    QCOMPARE(configuration->scanProfile.minSizeInKbytes, qint64(77));
    QCOMPARE(window->findChild<QStackedWidget *>()->currentIndex(), shown);
}

void tst_ScanConfigurationWidget::withoutAMaskThereIsAnotherWarning()
{
    // With a folder and no type to include; it stands before the page, too.
    openTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    clearMasks();
    ModalDriver modals;
    expectWarning(&modals, "You didn't select any file's mask");
    pressStart();
    QCOMPARE(modals.failures().join(QLatin1Char('\n')), QString());
    QCOMPARE(modals.parents(), QList<QWidget *>({page}));
    QCOMPARE(window->findChild<QStackedWidget *>()->currentIndex(), 0);
}

void tst_ScanConfigurationWidget::warningsLeaveTheSettingsAlone()
{
    // Neither the folders nor the profile of the previous scan change, nor do the ticks.
    openTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    clearMasks();
    ModalDriver modals;
    expectWarning(&modals, "You didn't select any file's mask");
    pressStart();
    QCOMPARE(modals.failures().join(QLatin1Char('\n')), QString());
    QCOMPARE(configuration->folders, QStringList(QStringLiteral("/previous")));
    QCOMPARE(configuration->scanProfile.minSizeInKbytes, qint64(77));
    QCOMPARE(driver->state(tree->path(QStringLiteral("b"))), Qt::Checked);
}

void tst_ScanConfigurationWidget::startStoresFoldersAndProfileAndChangesThePage()
{
    // Every field of the profile is that of the panel, and the window shows its page 1 at once.
    openTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    configuration->scanProfile.maxSizeEnabled = true;
    configuration->scanProfile.excludeMasks = QStringList(QStringLiteral("*.old"));
    pressStart();
    QCOMPARE(window->findChild<QStackedWidget *>()->currentIndex(), 1);
    QCOMPARE(configuration->folders, QStringList(tree->path(QStringLiteral("b"))));
    ScanProfile wanted;
    wanted.matchByteByByte = true;
    wanted.includeMasks = QStringList(QStringLiteral("*.*"));
    QCOMPARE(textOf(configuration->scanProfile), textOf(wanted));
}

void tst_ScanConfigurationWidget::tickedDescendantsAreNotStored()
{
    // Of a ticked folder and a ticked folder in it, the upper one alone.
    openTree();
    const QString a = tree->path(QStringLiteral("a"));
    driver->clickBranch(a);
    TRY_VERIFY(driver->isSettledAt(a));
    driver->clickBox(tree->path(QStringLiteral("a/inner")));
    driver->clickBox(tree->path(QStringLiteral("c")));
    QCOMPARE(driver->state(a), Qt::Checked);
    pressStart();
    QCOMPARE(configuration->folders, QStringList({a, tree->path(QStringLiteral("c"))}));
}

void tst_ScanConfigurationWidget::secondStartReplacesTheFirst()
{
    // Nothing of the first scan's folders and profile is left.
    openTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    pressStart();
    TRY_VERIFY(!window->isScanRunning());
    driver->clickBox(tree->path(QStringLiteral("b")));
    driver->clickBox(tree->path(QStringLiteral("c")));
    const QString first = textOf(configuration->scanProfile);
    ScanProfile &profile = configuration->scanProfile;
    for (bool *const isOn : {&profile.matchByteByByte,
                             &profile.sameFileName,
                             &profile.sameFileExtension,
                             &profile.sameDateOfCreation,
                             &profile.advancedMatch,
                             &profile.crcHash,
                             &profile.md5Hash,
                             &profile.sha1Hash,
                             &profile.minSizeEnabled,
                             &profile.maxSizeEnabled}) {
        *isOn = !*isOn;
    }
    profile.minSizeInKbytes = 78;
    profile.maxSizeInKbytes = 79;
    profile.includeMasks = QStringList(QStringLiteral("*.old"));
    profile.excludeMasks = profile.includeMasks;
    pressStart();
    QCOMPARE(configuration->folders, QStringList(tree->path(QStringLiteral("c"))));
    QCOMPARE(textOf(configuration->scanProfile), first);
}

void tst_ScanConfigurationWidget::startByKey()
{
    // The space bar on the button does what a click does.
    openTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    startButton()->setFocus();
    QTest::keyClick(startButton(), Qt::Key_Space);
    QCOMPARE(window->findChild<QStackedWidget *>()->currentIndex(), 1);
    QCOMPARE(configuration->folders, QStringList(tree->path(QStringLiteral("b"))));
}

void tst_ScanConfigurationWidget::pressWithinAScanStartsNothing()
{
    // The rest of a double click writes no settings, and leads to the page of the running scan.
    openTree();
    driver->clickBox(tree->path(QStringLiteral("b")));
    pressStart();
    driver->clickBox(tree->path(QStringLiteral("c")));
    window->setCurrentWidget(0);
    pressStart();
    QTest::keyClick(startButton(), Qt::Key_Space);
    QCOMPARE(configuration->folders, QStringList(tree->path(QStringLiteral("b"))));
    QCOMPARE(window->findChild<QStackedWidget *>()->currentIndex(), 1);
    TRY_VERIFY(!window->isScanRunning());
    pressStart();
    QCOMPARE(configuration->folders,
             QStringList({tree->path(QStringLiteral("b")), tree->path(QStringLiteral("c"))}));
}

TWINSIFT_TEST_MAIN(tst_ScanConfigurationWidget)
#include "tst_ScanConfigurationWidget.moc"
