// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"

#include <QStringList>
#include <QWidget>

#include <utility>

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class SpinBoxFileSize;

/**
 * The options of a scan as controls: how files must agree, which file types are taken and left out,
 * and the size limits. Builds a ScanProfile from them on request.
 *
 * The chosen file types live in the texts of the two read-only fields; a window of its own chooses
 * them.
 */
class ScanProfileWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ScanProfileWidget)

public:
    /** The controls start from fixed defaults, whatever the profile says. */
    explicit ScanProfileWidget(const ScanProfile &profile, QWidget *parent = nullptr);

    ScanProfile currentScanProfile() const;
    /** Disables the boxes of both modes. */
    void disableCheckBoxes();

public slots:
    /** Of the two radio buttons the one that emits decides, whether it went on or off. */
    void onChangeRadioButton();
    void onChangedCheckedState();
    void onButtonClicked();
    void onIncludeListChanged(QStringList list);
    void onExcludeListChanged(QStringList list);

private:
    QGridLayout *createByteByByteGrid();
    QGridLayout *createAdvancedGrid();
    QRadioButton *createRadioButton(const QString &text);
    QCheckBox *createHashCheckBox(const QString &text);
    /** The field of chosen types, and the button that opens the window to choose them. */
    std::pair<QLineEdit *, QPushButton *> createTypesInput(const QString &text);
    QLabel *createLabel(const QString &text, QWidget *buddy);
    void chooseTypes(const QString &chosen, const char *receiver);

    ScanProfile scanProfile;
    QRadioButton *matchByteByByteRadio = nullptr;
    QCheckBox *sameFileNameCheckBox = nullptr;
    QCheckBox *sameFileExtensionCheckBox = nullptr;
    QCheckBox *sameDateOfCreationCheckBox = nullptr;
    QRadioButton *advancedMatchRadio = nullptr;
    QCheckBox *md5CheckBox = nullptr;
    QCheckBox *sha1CheckBox = nullptr;
    QCheckBox *crcCheckBox = nullptr;
    QLineEdit *includeLineEdit = nullptr;
    QPushButton *includeButton = nullptr;
    QLineEdit *excludeLineEdit = nullptr;
    QPushButton *excludeButton = nullptr;
    SpinBoxFileSize *minSizeInput = nullptr;
    SpinBoxFileSize *maxSizeInput = nullptr;
};
