// SPDX-License-Identifier: MIT
#include "ui/config/SpinBoxFileSize.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QSignalBlocker>

#include <cmath>
#include <limits>

namespace
{
enum Unit { Kilobytes, Megabytes, Gigabytes };

constexpr qint64 kilobytesPerMegabyte = 1024;
constexpr qint64 kilobytesPerGigabyte = kilobytesPerMegabyte * 1024;

/**
 * The toolkit's Return key announces a new value even if it is the old one. Here that would replace
 * the exact size by the whole megabytes or gigabytes in which it is shown.
 */
class EditedValueSpinBox final : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        const bool tracking = keyboardTracking();
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            setKeyboardTracking(false);
        }
        QDoubleSpinBox::keyPressEvent(event);
        setKeyboardTracking(tracking);
    }
};
} // namespace

SpinBoxFileSize::SpinBoxFileSize(const QString &title, QWidget *parent)
    : QWidget(parent)
{
    checkBox = new QCheckBox(title, this);
    connect(checkBox, SIGNAL(toggled(bool)), this, SLOT(onCheckedStateChanged()));
    createSpinBox();
    createUnitComboBox();
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(checkBox);
    layout->addStretch();
    layout->addWidget(spinBox);
    layout->addWidget(unitComboBox);
}

void SpinBoxFileSize::setChecked(bool on)
{
    checkBox->setChecked(on);
    // Said once more, as a check box that keeps its state tells nobody.
    onCheckedStateChanged();
}

bool SpinBoxFileSize::isChecked() const
{
    return checkBox->isChecked();
}

void SpinBoxFileSize::setSizeInKbytes(qint64 size)
{
    Q_UNUSED(size)
}

qint64 SpinBoxFileSize::sizeInKbytes() const
{
    return storedSizeInKbytes;
}

qint64 SpinBoxFileSize::toWholeKilobytes(double kilobytes)
{
    // 2^63, the first value that the type does not hold.
    constexpr double limit = 9223372036854775808.0;
    if (std::isnan(kilobytes)) {
        return 0;
    }
    if (kilobytes >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    return static_cast<qint64>(std::fmax(kilobytes, 0.0));
}

void SpinBoxFileSize::onCheckedStateChanged()
{
    spinBox->setEnabled(checkBox->isChecked());
    unitComboBox->setEnabled(checkBox->isChecked());
}

void SpinBoxFileSize::onTypeSizeChanged()
{
    updateView();
}

void SpinBoxFileSize::onValueChanged(double newValue)
{
    Q_UNUSED(newValue)
    const double value = spinBox->value();
    switch (unitComboBox->currentIndex()) {
    case Kilobytes:
        storedSizeInKbytes = toWholeKilobytes(value);
        break;
    case Megabytes:
        storedSizeInKbytes = toWholeKilobytes(value * kilobytesPerMegabyte);
        break;
    case Gigabytes:
        storedSizeInKbytes = toWholeKilobytes(value * kilobytesPerGigabyte);
        break;
    default:
        break;
    }
}

void SpinBoxFileSize::updateView()
{
    // A change of unit must not change the size, although the number shows less of it.
    const QSignalBlocker blocker(spinBox);
    const qint64 wholeMegabytes = storedSizeInKbytes / kilobytesPerMegabyte;
    const qint64 wholeGigabytes = storedSizeInKbytes / kilobytesPerGigabyte;
    switch (unitComboBox->currentIndex()) {
    case Kilobytes:
        spinBox->setValue(static_cast<double>(storedSizeInKbytes));
        spinBox->setDecimals(0);
        unit = Kilobytes;
        break;
    case Megabytes:
        spinBox->setDecimals(1);
        spinBox->setValue(static_cast<double>(wholeMegabytes));
        unit = Megabytes;
        break;
    case Gigabytes:
        spinBox->setDecimals(2);
        spinBox->setValue(static_cast<double>(wholeGigabytes));
        unit = Gigabytes;
        break;
    default:
        break;
    }
}

void SpinBoxFileSize::createSpinBox()
{
    spinBox = new EditedValueSpinBox(this);
    spinBox->setAccessibleName(checkBox->text());
    spinBox->setValue(0.0);
    spinBox->setMaximum(std::numeric_limits<double>::max());
    connect(spinBox, SIGNAL(valueChanged(double)), this, SLOT(onValueChanged(double)));
}

void SpinBoxFileSize::createUnitComboBox()
{
    unitComboBox = new QComboBox(this);
    QString limit = checkBox->text();
    limit.remove(QLatin1Char(':'));
    unitComboBox->setAccessibleName(limit + QStringLiteral(", unit"));
    // Before the first item, which becomes the current one and shows the number without decimals.
    connect(unitComboBox, SIGNAL(currentIndexChanged(int)), this, SLOT(onTypeSizeChanged()));
    unitComboBox->addItem(QStringLiteral("KB"));
    unitComboBox->addItem(QStringLiteral("MB"));
    unitComboBox->addItem(QStringLiteral("GB"));
}
