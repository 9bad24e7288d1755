// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;

/**
 * A file size that can be switched off: a check box, a number and its unit.
 *
 * The size is kept in whole kilobytes of 1024 bytes. The number only shows it in the chosen unit,
 * in whole megabytes or gigabytes, and changes it when it is edited.
 */
class SpinBoxFileSize final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(SpinBoxFileSize)

public:
    explicit SpinBoxFileSize(const QString &title, QWidget *parent = nullptr);

    /** Also enables or disables number and unit, whatever the check box was before. */
    void setChecked(bool on);
    bool isChecked() const;
    /** Changes nothing: the size comes from the user alone. */
    void setSizeInKbytes(qint64 size);
    /** Also valid while the check box is off. */
    qint64 sizeInKbytes() const;
    /** Truncates; what is too large gives the largest size, no number and less than 0 give 0. */
    static qint64 toWholeKilobytes(double kilobytes);

public slots:
    void onCheckedStateChanged();
    void onTypeSizeChanged();
    void onValueChanged(double newValue);
    void updateView();

private:
    void createSpinBox();
    void createUnitComboBox();

    QCheckBox *checkBox = nullptr;
    QDoubleSpinBox *spinBox = nullptr;
    QComboBox *unitComboBox = nullptr;
    qint64 storedSizeInKbytes = 0;
    // The index of the unit in which the number is shown.
    int unit = 0;
};
