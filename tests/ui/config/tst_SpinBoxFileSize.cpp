// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/config/SpinBoxFileSize.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>

#include <cmath>
#include <limits>

class tst_SpinBoxFileSize final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;

    void freshInput();
    void layoutFromLeftToRight();
    void enteredValueIsStored_data();
    void enteredValueIsStored();
    void changeOfUnitKeepsTheSize();
    void editInTheNewUnitReplacesTheSize();
    void returnKeyKeepsAnUneditedSize();
    void returnKeyTakesAnEditedSize();
    void arrowKeysStepByOne();
    void sizeBeyondTheRangeIsTheLargest_data();
    void sizeBeyondTheRangeIsTheLargest();
    void wholeKilobytes_data();
    void wholeKilobytes();
    void valueComesFromTheSpinBoxNotFromTheSignal();
    void unitThatIsNoneChangesNothing();
    void updateViewRestoresBlocking();
    void setSizeChangesNothing();
    void setCheckedFalseDisablesAFreshInput();
    void checkBoxEnablesTheOtherControls();
    void sizeSurvivesSwitchingOff();

private:
    QCheckBox *checkBox() const { return input->findChild<QCheckBox *>(); }
    QDoubleSpinBox *spinBox() const { return input->findChild<QDoubleSpinBox *>(); }
    QComboBox *units() const { return input->findChild<QComboBox *>(); }
    void enter(const QString &text) const;
    void choose(const QString &unit) const;
    QString shown() const { return spinBox()->text(); }

    std::unique_ptr<SpinBoxFileSize> input;
};

void tst_SpinBoxFileSize::init()
{
    TestCase::init();
    QLocale::setDefault(QLocale::c());
    input = std::make_unique<SpinBoxFileSize>(QStringLiteral("Minimum size:"), nullptr);
    input->show();
}

void tst_SpinBoxFileSize::cleanup()
{
    input.reset();
    TestCase::cleanup();
}

void tst_SpinBoxFileSize::enter(const QString &text) const
{
    spinBox()->selectAll();
    QTest::keyClicks(spinBox(), text);
}

void tst_SpinBoxFileSize::choose(const QString &unit) const
{
    const int index = units()->findText(unit);
    while (units()->currentIndex() != index) {
        QTest::keyClick(units(), units()->currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
    }
}

void tst_SpinBoxFileSize::freshInput()
{
    // A fresh input is off, has all controls enabled, holds 0 KB and shows it without decimals.
    QCOMPARE(checkBox()->text(), QStringLiteral("Minimum size:"));
    QVERIFY(!input->isChecked() && !checkBox()->isChecked());
    QVERIFY(spinBox()->isEnabled() && units()->isEnabled());
    QCOMPARE(input->sizeInKbytes(), 0);
    QCOMPARE(shown(), QStringLiteral("0"));
    QCOMPARE(spinBox()->decimals(), 0);
    QCOMPARE(spinBox()->minimum(), 0.0);
    QCOMPARE(spinBox()->maximum(), std::numeric_limits<double>::max());
    QCOMPARE(spinBox()->singleStep(), 1.0);
    QCOMPARE(units()->count(), 3);
    QCOMPARE(units()->itemText(0), QStringLiteral("KB"));
    QCOMPARE(units()->itemText(1), QStringLiteral("MB"));
    QCOMPARE(units()->itemText(2), QStringLiteral("GB"));
    QCOMPARE(units()->currentIndex(), 0);
    QCOMPARE(spinBox()->accessibleName(), checkBox()->text());
    QCOMPARE(units()->accessibleName(),
             QString(checkBox()->text()).remove(QLatin1Char(':')) + QStringLiteral(", unit"));
}

void tst_SpinBoxFileSize::layoutFromLeftToRight()
{
    // The check box stands at the left edge, number and unit at the right one.
    input->resize(600, input->height());
    QTRY_VERIFY(spinBox()->x() > 300);
    QVERIFY(checkBox()->geometry().right() < 300);
    QVERIFY(units()->x() > spinBox()->geometry().right());
}

void tst_SpinBoxFileSize::enteredValueIsStored_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("kilobytes");
    const QString mb = QStringLiteral("MB");
    const QString gb = QStringLiteral("GB");
    QTest::newRow("5000 KB") << QStringLiteral("KB") << QStringLiteral("5000") << qint64(5000);
    QTest::newRow("1.5 MB") << mb << QStringLiteral("1.5") << qint64(1536);
    QTest::newRow("0.1 MB, truncated") << mb << QStringLiteral("0.1") << qint64(102);
    QTest::newRow("1.00 GB") << gb << QStringLiteral("1.00") << qint64(1048576);
    QTest::newRow("0.01 GB, truncated") << gb << QStringLiteral("0.01") << qint64(10485);
}

void tst_SpinBoxFileSize::enteredValueIsStored()
{
    // What is typed is stored in kilobytes of 1024 bytes, truncated.
    QFETCH(const QString, unit);
    QFETCH(const QString, text);
    QFETCH(const qint64, kilobytes);
    choose(unit);
    enter(text);
    QCOMPARE(input->sizeInKbytes(), kilobytes);
}

void tst_SpinBoxFileSize::changeOfUnitKeepsTheSize()
{
    // Another unit shows whole numbers of it; the stored size stays exact.
    choose(QStringLiteral("MB"));
    QCOMPARE(shown(), QStringLiteral("0.0"));
    enter(QStringLiteral("1.5"));
    choose(QStringLiteral("KB"));
    QCOMPARE(shown(), QStringLiteral("1536"));
    choose(QStringLiteral("GB"));
    QCOMPARE(shown(), QStringLiteral("0.00"));
    QCOMPARE(input->sizeInKbytes(), 1536);
    choose(QStringLiteral("MB"));
    QCOMPARE(shown(), QStringLiteral("1.0"));
    QCOMPARE(input->sizeInKbytes(), 1536);
    choose(QStringLiteral("GB"));
    enter(QStringLiteral("1.5"));
    choose(QStringLiteral("MB"));
    QCOMPARE(shown(), QStringLiteral("1536.0"));
    choose(QStringLiteral("GB"));
    QCOMPARE(shown(), QStringLiteral("1.00"));
    QCOMPARE(input->sizeInKbytes(), 1572864);
}

void tst_SpinBoxFileSize::editInTheNewUnitReplacesTheSize()
{
    // An edit after a change of unit counts from what is shown, also back to what was shown.
    enter(QStringLiteral("1536"));
    choose(QStringLiteral("MB"));
    QTest::keyClick(spinBox(), Qt::Key_Up);
    QCOMPARE(input->sizeInKbytes(), 2048);
    QTest::keyClick(spinBox(), Qt::Key_Down);
    QCOMPARE(input->sizeInKbytes(), 1024);
}

void tst_SpinBoxFileSize::returnKeyKeepsAnUneditedSize()
{
    // Return in a number that nobody has edited does not round the size to what is shown.
    enter(QStringLiteral("1536"));
    choose(QStringLiteral("GB"));
    QTest::keyClick(spinBox(), Qt::Key_Return);
    QCOMPARE(input->sizeInKbytes(), 1536);
    QTest::keyClick(spinBox(), Qt::Key_Enter);
    QCOMPARE(input->sizeInKbytes(), 1536);
}

void tst_SpinBoxFileSize::returnKeyTakesAnEditedSize()
{
    // Typing goes on to count at once after Return.
    enter(QStringLiteral("7"));
    QTest::keyClick(spinBox(), Qt::Key_Return);
    QCOMPARE(input->sizeInKbytes(), 7);
    enter(QStringLiteral("12"));
    QCOMPARE(input->sizeInKbytes(), 12);
}

void tst_SpinBoxFileSize::arrowKeysStepByOne()
{
    // The arrow keys change the size by one of the unit and stop at zero.
    choose(QStringLiteral("GB"));
    QTest::keyClick(spinBox(), Qt::Key_Up);
    QCOMPARE(input->sizeInKbytes(), 1048576);
    QTest::keyClick(spinBox(), Qt::Key_Down);
    QTest::keyClick(spinBox(), Qt::Key_Down);
    QCOMPARE(input->sizeInKbytes(), 0);
}

void tst_SpinBoxFileSize::sizeBeyondTheRangeIsTheLargest_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("kilobytes");
    const QString kb = QStringLiteral("KB");
    const QString gb = QStringLiteral("GB");
    const qint64 largest = std::numeric_limits<qint64>::max();
    QTest::newRow("last that fits")
        << kb << QStringLiteral("9223372036854774784") << Q_INT64_C(9223372036854774784);
    QTest::newRow("first that does not") << kb << QStringLiteral("9223372036854775808") << largest;
    QTest::newRow("far beyond") << kb << QString(300, QLatin1Char('9')) << largest;
    QTest::newRow("beyond by its unit") << gb << QStringLiteral("8796093022208") << largest;
    QTest::newRow("product beyond every number") << gb << QString(308, QLatin1Char('9')) << largest;
}

void tst_SpinBoxFileSize::sizeBeyondTheRangeIsTheLargest()
{
    // A size of more than 63 bits is stored as the largest one there is.
    QFETCH(const QString, unit);
    QFETCH(const QString, text);
    QFETCH(const qint64, kilobytes);
    choose(unit);
    enter(text);
    QCOMPARE(input->sizeInKbytes(), kilobytes);
}

void tst_SpinBoxFileSize::wholeKilobytes_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<qint64>("kilobytes");
    const double limit = 9223372036854775808.0;
    const qint64 largest = std::numeric_limits<qint64>::max();
    QTest::newRow("truncated") << 102.99 << qint64(102);
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << qint64(0);
    QTest::newRow("not a number, signed") << -std::numeric_limits<double>::quiet_NaN() << qint64(0);
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << largest;
    QTest::newRow("below the limit")
        << std::nextafter(limit, 0.0) << Q_INT64_C(9223372036854774784);
    QTest::newRow("the limit") << limit << largest;
    QTest::newRow("below zero") << -1.5 << qint64(0);
    QTest::newRow("endless below zero") << -std::numeric_limits<double>::infinity() << qint64(0);
}

void tst_SpinBoxFileSize::wholeKilobytes()
{
    // Every value has a size: no number is 0, one beyond the range the largest there is.
    QFETCH(const double, value);
    QFETCH(const qint64, kilobytes);
    QCOMPARE(SpinBoxFileSize::toWholeKilobytes(value), kilobytes);
}

void tst_SpinBoxFileSize::valueComesFromTheSpinBoxNotFromTheSignal()
{
    // The number that counts is the one in the spin box.
    enter(QStringLiteral("5"));
    input->onValueChanged(77);
    QCOMPARE(input->sizeInKbytes(), 5);
    choose(QStringLiteral("MB"));
    input->onValueChanged(77);
    QCOMPARE(input->sizeInKbytes(), 0);
}

void tst_SpinBoxFileSize::unitThatIsNoneChangesNothing()
{
    // Without a unit neither number nor size change.
    enter(QStringLiteral("1536"));
    units()->setCurrentIndex(-1);
    QCOMPARE(shown(), QStringLiteral("1536"));
    enter(QStringLiteral("7"));
    QCOMPARE(input->sizeInKbytes(), 1536);
}

void tst_SpinBoxFileSize::updateViewRestoresBlocking()
{
    // The view leaves the spin box's signals as it found them, blocked or not.
    spinBox()->blockSignals(true);
    input->updateView();
    QVERIFY(spinBox()->signalsBlocked());
    spinBox()->blockSignals(false);
    input->updateView();
    QVERIFY(!spinBox()->signalsBlocked());
}

void tst_SpinBoxFileSize::setSizeChangesNothing()
{
    // The size comes from the user alone.
    enter(QStringLiteral("12"));
    input->setSizeInKbytes(5000);
    QCOMPARE(input->sizeInKbytes(), 12);
    QCOMPARE(shown(), QStringLiteral("12"));
}

void tst_SpinBoxFileSize::setCheckedFalseDisablesAFreshInput()
{
    // Switching off what is off already still disables number and unit.
    input->setChecked(false);
    QVERIFY(!input->isChecked());
    QVERIFY(!spinBox()->isEnabled() && !units()->isEnabled());
    input->setChecked(true);
    QVERIFY(input->isChecked() && checkBox()->isChecked());
    QVERIFY(spinBox()->isEnabled() && units()->isEnabled());
}

void tst_SpinBoxFileSize::checkBoxEnablesTheOtherControls()
{
    // A click switches the limit on with number and unit, the next one switches all off.
    input->setChecked(false);
    QTest::mouseClick(checkBox(),
                      Qt::LeftButton,
                      Qt::NoModifier,
                      QPoint(8, checkBox()->height() / 2));
    QVERIFY(input->isChecked() && spinBox()->isEnabled() && units()->isEnabled());
    QTest::keyClick(checkBox(), Qt::Key_Space);
    QVERIFY(!input->isChecked() && !spinBox()->isEnabled() && !units()->isEnabled());
}

void tst_SpinBoxFileSize::sizeSurvivesSwitchingOff()
{
    // Size and unit are the same after off and on.
    input->setChecked(true);
    choose(QStringLiteral("MB"));
    enter(QStringLiteral("2.5"));
    input->setChecked(false);
    QCOMPARE(input->sizeInKbytes(), 2560);
    input->setChecked(true);
    QCOMPARE(input->sizeInKbytes(), 2560);
    QCOMPARE(shown(), QStringLiteral("2.5"));
    QCOMPARE(units()->currentText(), QStringLiteral("MB"));
}

TWINSIFT_TEST_MAIN(tst_SpinBoxFileSize)
#include "tst_SpinBoxFileSize.moc"
