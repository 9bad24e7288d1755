// SPDX-License-Identifier: MIT
#include "tests/support/ModalDriver.h"
#include "tests/support/TestCase.h"
#include "ui/filetypes/FileTypesEditWidget.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>

namespace
{
QString runTogether()
{
    return QStringLiteral("Adobe Acrobat Files|*.PDFArchive Files|*.7Z;*.ZIP\n");
}
} // namespace

class tst_FileTypesEditWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;

    void layoutFromTopToBottom();
    void focusChainFollowsTheLayout();
    void enterMeansOk();
    void currentMaskFillsTheFields_data();
    void currentMaskFillsTheFields();
    void okAddsANewEntry_data();
    void okAddsANewEntry();
    void okWithoutBothFieldsIsRefused_data();
    void okWithoutBothFieldsIsRefused();
    void refusalHasNoParent();
    void nameThatIsAWholeEntryIsRefused();
    void nameIsNotComparedWhileEditing();
    void okTellsTheChange();
    void editingDropsWhatStandsBehindTheSecondBar();
    void entryWithoutBarIsStillEdited();
    void emptyEntryIsAdded();
    void secondPressTellsNothing();
    void cancelTellsNothing();
    void frameOnlyHides();

private:
    QLineEdit *field(int index) const;
    QPushButton *button(const QString &text) const;
    void type(const QString &name, const QString &masks) const;
    void press(const QString &text) const;

    std::unique_ptr<ModalDriver> driver;
    QPointer<FileTypesEditWidget> editor;
    std::unique_ptr<QSignalSpy> added;
    std::unique_ptr<QSignalSpy> edited;
};

void tst_FileTypesEditWidget::init()
{
    TestCase::init();
    // Refuses boxes that no test has announced; a test would wait for their answer.
    driver = std::make_unique<ModalDriver>();
    editor = new FileTypesEditWidget(nullptr);
    added = std::make_unique<QSignalSpy>(editor.data(), SIGNAL(addNewMask(QString)));
    // clang-format off
    edited = std::make_unique<QSignalSpy>(editor.data(), SIGNAL(editMask(QString,QString)));
    // clang-format on
    editor->show();
}

void tst_FileTypesEditWidget::cleanup()
{
    delete editor;
    added.reset();
    edited.reset();
    const QStringList failures = driver->failures();
    driver.reset();
    TestCase::cleanup();
    QCOMPARE(failures, QStringList());
}

QLineEdit *tst_FileTypesEditWidget::field(int index) const
{
    return editor->findChildren<QLineEdit *>().at(index);
}

QPushButton *tst_FileTypesEditWidget::button(const QString &text) const
{
    const QList<QPushButton *> buttons = editor->findChildren<QPushButton *>();
    for (QPushButton *const candidate : buttons) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

void tst_FileTypesEditWidget::type(const QString &name, const QString &masks) const
{
    QTest::keyClicks(field(0), name);
    QTest::keyClicks(field(1), masks);
}

void tst_FileTypesEditWidget::press(const QString &text) const
{
    QTest::mouseClick(button(text), Qt::LeftButton);
}

void tst_FileTypesEditWidget::layoutFromTopToBottom()
{
    // The window "Edit Mask" has two labelled fields above the right-hand buttons "Ok", "Cancel".
    QCOMPARE(editor->windowTitle(), QStringLiteral("Edit Mask"));
    QVERIFY(editor->isWindow());
    QCOMPARE(editor->windowModality(), Qt::NonModal);
    const QList<QLabel *> labels = editor->findChildren<QLabel *>();
    QCOMPARE(labels.size(), 2);
    QCOMPARE(labels.at(0)->text(), QStringLiteral("Name"));
    QCOMPARE(labels.at(1)->text(), QStringLiteral("Mask"));
    QCOMPARE(labels.at(0)->buddy(), field(0));
    QCOMPARE(labels.at(1)->buddy(), field(1));
    QPushButton *const ok = button(QStringLiteral("Ok"));
    QPushButton *const cancel = button(QStringLiteral("Cancel"));
    const QList<QWidget *> column = {labels.at(0), field(0), labels.at(1), field(1), ok};
    for (int i = 1; i < column.size(); ++i) {
        QVERIFY(column.at(i)->y() >= column.at(i - 1)->geometry().bottom());
    }
    QCOMPARE(ok->y(), cancel->y());
    QVERIFY(ok->x() > editor->width() / 2);
    QVERIFY(cancel->x() > ok->x());
    editor->resize(editor->width(), 500);
    QTRY_VERIFY(ok->y() < 250);
}

void tst_FileTypesEditWidget::focusChainFollowsTheLayout()
{
    // Tab goes from the name to the masks, to "Ok" and to "Cancel", Backtab the same way back.
    editor->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(editor.data()));
    const QList<QWidget *> chain = {field(0),
                                    field(1),
                                    button(QStringLiteral("Ok")),
                                    button(QStringLiteral("Cancel"))};
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

void tst_FileTypesEditWidget::enterMeansOk()
{
    // In either field: a refused entry stays to be mended, a good one is handed on once.
    driver->expectMessageBox(QStringLiteral("Warning"),
                             QStringLiteral("One of fields are empty!"),
                             QMessageBox::Ok,
                             QMessageBox::Ok);
    QTest::keyClicks(field(0), QStringLiteral("Name"));
    QTest::keyClick(field(0), Qt::Key_Return);
    QCOMPARE(driver->failures(), QStringList());
    QCOMPARE(added->count(), 0);
    QTest::keyClicks(field(1), QStringLiteral("*.x"));
    QTest::keyClick(field(1), Qt::Key_Enter);
    QTest::keyClick(field(1), Qt::Key_Enter);
    QCOMPARE(added->count(), 1);
    QCOMPARE(added->first().first().toString(), QStringLiteral("Name|*.x"));
}

void tst_FileTypesEditWidget::currentMaskFillsTheFields_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("masks");
    QTest::newRow("plain") << QStringLiteral("Text Files|*.TXT;*.RTF")
                           << QStringLiteral("Text Files") << QStringLiteral("*.TXT;*.RTF");
    QTest::newRow("two bars") << runTogether() << QStringLiteral("Adobe Acrobat Files")
                              << QStringLiteral("*.PDFArchive Files");
    QTest::newRow("line feed") << QStringLiteral("A|*.x\n") << QStringLiteral("A")
                               << QStringLiteral("*.x\n");
    QTest::newRow("nothing before the bar")
        << QStringLiteral("|*.x") << QString() << QStringLiteral("*.x");
    QTest::newRow("no bar") << QStringLiteral("A") << QString() << QString();
    QTest::newRow("nothing") << QString() << QString() << QString();
}

void tst_FileTypesEditWidget::currentMaskFillsTheFields()
{
    // The first two pieces of the entry are shown as they are, with fewer pieces none.
    QFETCH(const QString, entry);
    QFETCH(const QString, name);
    QFETCH(const QString, masks);
    editor->setCurrentMask(entry);
    QCOMPARE(field(0)->text(), name);
    QCOMPARE(field(1)->text(), masks);
}

void tst_FileTypesEditWidget::okAddsANewEntry_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("masks");
    QTest::addColumn<QString>("entry");
    QTest::newRow("plain") << QStringLiteral("A") << QStringLiteral("*.x;*.y")
                           << QStringLiteral("A|*.x;*.y");
    QTest::newRow("name of another entry") << QStringLiteral("Text Files") << QStringLiteral("*.x")
                                           << QStringLiteral("Text Files|*.x");
    QTest::newRow("marker in the name")
        << QStringLiteral("A%1B") << QStringLiteral("*.x") << QStringLiteral("A*.xB|%2");
    QTest::newRow("as typed") << QStringLiteral(" a|b;") << QStringLiteral(" nonsense ")
                              << QStringLiteral(" a|b;| nonsense ");
    QTest::newRow("other case of a whole entry")
        << QStringLiteral("lonely") << QStringLiteral("*.x") << QStringLiteral("lonely|*.x");
}

void tst_FileTypesEditWidget::okAddsANewEntry()
{
    // "Ok" tells the new entry once, made of the fields as typed, and the window goes.
    QFETCH(const QString, name);
    QFETCH(const QString, masks);
    QFETCH(const QString, entry);
    editor->setAllFilesMask({QStringLiteral("Text Files|*.TXT;*.RTF"), QStringLiteral("Lonely")});
    type(name, masks);
    press(QStringLiteral("Ok"));
    QCOMPARE(added->size(), 1);
    QCOMPARE(added->first(), QVariantList{entry});
    QVERIFY(edited->isEmpty());
    QTRY_VERIFY(editor.isNull());
}

void tst_FileTypesEditWidget::okWithoutBothFieldsIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("masks");
    QTest::newRow("no name") << QString() << QStringLiteral("*.x");
    QTest::newRow("no masks, though the name is taken") << QStringLiteral("Lonely") << QString();
    QTest::newRow("neither") << QString() << QString();
}

void tst_FileTypesEditWidget::okWithoutBothFieldsIsRefused()
{
    // A warning names the empty field, nothing is told, and the window stays as it was.
    QFETCH(const QString, name);
    QFETCH(const QString, masks);
    driver->expectMessageBox(QStringLiteral("Warning"),
                             QStringLiteral("One of fields are empty!"),
                             QMessageBox::Ok,
                             QMessageBox::Ok);
    editor->setAllFilesMask({QStringLiteral("Lonely")});
    type(name, masks);
    press(QStringLiteral("Ok"));
    QCOMPARE(driver->failures(), QStringList());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!editor.isNull() && editor->isVisible());
    QVERIFY(added->isEmpty() && edited->isEmpty());
    QCOMPARE(field(0)->text(), name);
    QCOMPARE(field(1)->text(), masks);
}

void tst_FileTypesEditWidget::refusalHasNoParent()
{
    // The warning is a window of its own beside the editor.
    driver->expect(
        QStringLiteral("Warning"),
        [](QWidget *box) {
            return box->parentWidget() == nullptr ? QString() : QStringLiteral("it has a parent");
        },
        [](QWidget *box) { box->close(); });
    press(QStringLiteral("Ok"));
    QCOMPARE(driver->failures(), QStringList());
}

void tst_FileTypesEditWidget::nameThatIsAWholeEntryIsRefused()
{
    // A new name equal to an entry without a bar is refused; corrected, it is taken.
    driver->expectMessageBox(
        QStringLiteral("Warning"),
        QStringLiteral("Mask with current name was created. Please, use another name."),
        QMessageBox::Ok,
        QMessageBox::Ok);
    editor->setAllFilesMask({QStringLiteral("A|*.x"), QStringLiteral("Lonely")});
    type(QStringLiteral("Lonely"), QStringLiteral("*.y"));
    press(QStringLiteral("Ok"));
    QCOMPARE(driver->failures(), QStringList());
    QCOMPARE(driver->parents(), QList<QWidget *>({nullptr}));
    QVERIFY(added->isEmpty() && editor->isVisible());
    type(QStringLiteral("2"), QString());
    press(QStringLiteral("Ok"));
    QCOMPARE(added->first(), QVariantList{QStringLiteral("Lonely2|*.y")});
}

void tst_FileTypesEditWidget::nameIsNotComparedWhileEditing()
{
    // An edited entry may take the name that stands alone as another entry.
    editor->setCurrentMask(QStringLiteral("|*.x"));
    editor->setAllFilesMask({QStringLiteral("|*.x"), QStringLiteral("Lonely")});
    type(QStringLiteral("Lonely"), QString());
    press(QStringLiteral("Ok"));
    QCOMPARE(edited->first(), (QVariantList{QStringLiteral("|*.x"), QStringLiteral("Lonely|*.x")}));
}

void tst_FileTypesEditWidget::okTellsTheChange()
{
    // "Ok" tells the old and the new entry once, the old line feed in both, and the window goes.
    editor->setCurrentMask(QStringLiteral("A|*.x\n"));
    editor->setAllFilesMask({QStringLiteral("A|*.x\n")});
    QTest::keyClick(field(0), Qt::Key_End);
    QTest::keyClicks(field(0), QStringLiteral("2"));
    QTest::keyClick(button(QStringLiteral("Ok")), Qt::Key_Space);
    QCOMPARE(edited->size(), 1);
    QCOMPARE(edited->first(),
             (QVariantList{QStringLiteral("A|*.x\n"), QStringLiteral("A2|*.x\n")}));
    QVERIFY(added->isEmpty());
    QTRY_VERIFY(editor.isNull());
}

void tst_FileTypesEditWidget::editingDropsWhatStandsBehindTheSecondBar()
{
    // The run-together entry loses its third piece by "Ok" alone.
    editor->setCurrentMask(runTogether());
    editor->setAllFilesMask({runTogether()});
    press(QStringLiteral("Ok"));
    QCOMPARE(
        edited->first(),
        (QVariantList{runTogether(), QStringLiteral("Adobe Acrobat Files|*.PDFArchive Files")}));
}

void tst_FileTypesEditWidget::entryWithoutBarIsStillEdited()
{
    // An entry without a bar opens with empty fields and is replaced by what is typed.
    editor->setCurrentMask(QStringLiteral("Lonely"));
    type(QStringLiteral("A"), QStringLiteral("*.x"));
    press(QStringLiteral("Ok"));
    QCOMPARE(edited->first(), (QVariantList{QStringLiteral("Lonely"), QStringLiteral("A|*.x")}));
}

void tst_FileTypesEditWidget::emptyEntryIsAdded()
{
    // Given an empty entry to change, the window adds.
    editor->setCurrentMask(QString());
    type(QStringLiteral("A"), QStringLiteral("*.x"));
    press(QStringLiteral("Ok"));
    QCOMPARE(added->first(), QVariantList{QStringLiteral("A|*.x")});
    QVERIFY(edited->isEmpty());
}

void tst_FileTypesEditWidget::secondPressTellsNothing()
{
    // A second press before the window is gone does not add the entry again.
    type(QStringLiteral("A"), QStringLiteral("*.x"));
    press(QStringLiteral("Ok"));
    press(QStringLiteral("Ok"));
    QCOMPARE(added->size(), 1);
}

void tst_FileTypesEditWidget::cancelTellsNothing()
{
    // "Cancel" deletes the window later and tells nothing.
    type(QStringLiteral("A"), QStringLiteral("*.x"));
    press(QStringLiteral("Cancel"));
    QVERIFY(!editor.isNull());
    QTRY_VERIFY(editor.isNull());
    QVERIFY(added->isEmpty() && edited->isEmpty());
}

void tst_FileTypesEditWidget::frameOnlyHides()
{
    // Closed by its frame the window is hidden, not deleted, and tells nothing.
    type(QStringLiteral("A"), QStringLiteral("*.x"));
    QVERIFY(editor->close());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!editor.isNull() && editor->isHidden());
    QVERIFY(added->isEmpty() && edited->isEmpty());
}

TWINSIFT_TEST_MAIN(tst_FileTypesEditWidget)
#include "tst_FileTypesEditWidget.moc"
