// SPDX-License-Identifier: MIT
#include "ui/config/ScanProfileWidget.h"

#include "ui/SideWindow.h"
#include "ui/config/SpinBoxFileSize.h"
#include "ui/filetypes/FileTypesWidget.h"
#include "ui/filetypes/MaskEntry.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <limits>
#include <tuple>

namespace
{
constexpr int gridColumns = 20;

// Indented by one column below its radio button.
QGridLayout *createModeGrid(QRadioButton *mode, const QList<QCheckBox *> &boxes)
{
    auto *const grid = new QGridLayout;
    grid->addWidget(mode, 0, 0, 1, gridColumns);
    for (int i = 0; i < boxes.size(); ++i) {
        grid->addWidget(boxes.at(i), i + 1, 1, 1, gridColumns - 1);
    }
    return grid;
}

QHBoxLayout *createRow(QLineEdit *lineEdit, QPushButton *button)
{
    auto *const row = new QHBoxLayout;
    row->addWidget(lineEdit);
    row->addWidget(button);
    return row;
}

void showTypes(QLineEdit *lineEdit, const QStringList &types)
{
    lineEdit->setText(MaskEntry::toLine(types));
    lineEdit->setCursorPosition(0);
}
} // namespace

ScanProfileWidget::ScanProfileWidget(const ScanProfile &profile, QWidget *parent)
    : QWidget(parent)
    , scanProfile(profile)
{
    QGridLayout *const byteByByteGrid = createByteByByteGrid();
    QGridLayout *const advancedGrid = createAdvancedGrid();
    std::tie(includeLineEdit, includeButton) = createTypesInput(QStringLiteral("Any File|*.*"));
    std::tie(excludeLineEdit, excludeButton) = createTypesInput(QString());
    minSizeInput = new SpinBoxFileSize(QStringLiteral("Minimum size:"), this);
    maxSizeInput = new SpinBoxFileSize(QStringLiteral("Maximum size:"), this);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(byteByByteGrid);
    layout->addLayout(advancedGrid);
    layout->addWidget(createLabel(QStringLiteral("File Types Include:"), includeLineEdit));
    layout->addLayout(createRow(includeLineEdit, includeButton));
    layout->addWidget(createLabel(QStringLiteral("File Types Exclude:"), excludeLineEdit));
    layout->addLayout(createRow(excludeLineEdit, excludeButton));
    layout->addWidget(minSizeInput);
    layout->addWidget(maxSizeInput);
    includeButton->setAccessibleName(QStringLiteral("Choose file types to include"));
    excludeButton->setAccessibleName(QStringLiteral("Choose file types to exclude"));
    matchByteByByteRadio->setChecked(true);
    minSizeInput->setChecked(false);
    maxSizeInput->setChecked(false);
}

ScanProfile ScanProfileWidget::currentScanProfile() const
{
    ScanProfile profile;
    profile.matchByteByByte = matchByteByByteRadio->isChecked();
    if (profile.matchByteByByte) {
        profile.sameFileName = sameFileNameCheckBox->isChecked();
        profile.sameFileExtension = sameFileExtensionCheckBox->isChecked();
        profile.sameDateOfCreation = sameDateOfCreationCheckBox->isChecked();
    }
    profile.advancedMatch = advancedMatchRadio->isChecked();
    profile.crcHash = crcCheckBox->isChecked();
    profile.md5Hash = md5CheckBox->isChecked();
    profile.sha1Hash = sha1CheckBox->isChecked();
    profile.minSizeEnabled = minSizeInput->isChecked();
    if (profile.minSizeEnabled) {
        profile.minSizeInKbytes = minSizeInput->sizeInKbytes();
    }
    profile.maxSizeEnabled = maxSizeInput->isChecked();
    if (profile.maxSizeEnabled) {
        profile.maxSizeInKbytes = maxSizeInput->sizeInKbytes();
    }
    profile.includeMasks = MaskEntry::masksOfLine(includeLineEdit->text());
    profile.excludeMasks = MaskEntry::masksOfLine(excludeLineEdit->text());
    return profile;
}

void ScanProfileWidget::disableCheckBoxes()
{
    md5CheckBox->setEnabled(false);
    sha1CheckBox->setEnabled(false);
    crcCheckBox->setEnabled(false);
    sameFileNameCheckBox->setEnabled(false);
    sameFileExtensionCheckBox->setEnabled(false);
    sameDateOfCreationCheckBox->setEnabled(false);
}

void ScanProfileWidget::onChangeRadioButton()
{
    disableCheckBoxes();
    // The radio button that goes on emits last, so its mode is the one that stays.
    if (sender() == matchByteByByteRadio) {
        sameFileNameCheckBox->setEnabled(true);
        sameFileExtensionCheckBox->setEnabled(true);
        sameDateOfCreationCheckBox->setEnabled(true);
        md5CheckBox->setChecked(false);
        sha1CheckBox->setChecked(false);
        crcCheckBox->setChecked(false);
    } else {
        md5CheckBox->setEnabled(true);
        sha1CheckBox->setEnabled(true);
        crcCheckBox->setEnabled(true);
        md5CheckBox->setChecked(true);
    }
}

void ScanProfileWidget::onChangedCheckedState()
{
    for (QCheckBox *const box : {md5CheckBox, sha1CheckBox, crcCheckBox}) {
        box->setChecked(box == sender());
    }
}

void ScanProfileWidget::onButtonClicked()
{
    if (sender() == includeButton) {
        chooseTypes(includeLineEdit->text(), SLOT(onIncludeListChanged(QStringList)));
    } else if (sender() == excludeButton) {
        chooseTypes(excludeLineEdit->text(), SLOT(onExcludeListChanged(QStringList)));
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ScanProfileWidget::onIncludeListChanged(QStringList list)
{
    showTypes(includeLineEdit, list);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ScanProfileWidget::onExcludeListChanged(QStringList list)
{
    showTypes(excludeLineEdit, list);
}

QGridLayout *ScanProfileWidget::createByteByByteGrid()
{
    matchByteByByteRadio = createRadioButton(QStringLiteral("Match Byte By Byte"));
    sameFileNameCheckBox = new QCheckBox(QStringLiteral("Same File Name"), this);
    sameFileNameCheckBox->setToolTip(
        tr("If this option is enabled, software finds duplicates only with same names in different "
           "folders."));
    sameFileExtensionCheckBox = new QCheckBox(QStringLiteral("Same File Extension"), this);
    sameFileExtensionCheckBox->setToolTip(
        tr("If this option is enabled, software finds duplicates only with same extensions."));
    sameDateOfCreationCheckBox = new QCheckBox(QStringLiteral("Same Date Of Creation"), this);
    sameDateOfCreationCheckBox->setToolTip(tr(
        "If this option is enabled, software finds duplicates only with same date of creation."));
    return createModeGrid(
        matchByteByByteRadio,
        {sameFileNameCheckBox, sameFileExtensionCheckBox, sameDateOfCreationCheckBox});
}

QGridLayout *ScanProfileWidget::createAdvancedGrid()
{
    advancedMatchRadio = createRadioButton(QStringLiteral("Advanced Match"));
    md5CheckBox = createHashCheckBox(QStringLiteral("MD5 Hash"));
    sha1CheckBox = createHashCheckBox(QStringLiteral("SHA-1 Hash"));
    crcCheckBox = createHashCheckBox(QStringLiteral("Cyclic Redundancy Check (CRC)"));
    return createModeGrid(advancedMatchRadio, {md5CheckBox, sha1CheckBox, crcCheckBox});
}

QRadioButton *ScanProfileWidget::createRadioButton(const QString &text)
{
    auto *const radioButton = new QRadioButton(text, this);
    connect(radioButton, SIGNAL(toggled(bool)), this, SLOT(onChangeRadioButton()));
    return radioButton;
}

QCheckBox *ScanProfileWidget::createHashCheckBox(const QString &text)
{
    auto *const box = new QCheckBox(text, this);
    connect(box, SIGNAL(clicked(bool)), this, SLOT(onChangedCheckedState()));
    return box;
}

std::pair<QLineEdit *, QPushButton *> ScanProfileWidget::createTypesInput(const QString &text)
{
    auto *const lineEdit = new QLineEdit(text, this);
    lineEdit->setReadOnly(true);
    // The field stores the choice: at the toolkit's 32767 characters it would drop chosen types.
    lineEdit->setMaxLength(std::numeric_limits<int>::max());
    auto *const button = new QPushButton(QStringLiteral("..."), this);
    connect(button, SIGNAL(clicked(bool)), this, SLOT(onButtonClicked()));
    return {lineEdit, button};
}

QLabel *ScanProfileWidget::createLabel(const QString &text, QWidget *buddy)
{
    auto *const label = new QLabel(text, this);
    label->setBuddy(buddy);
    return label;
}

void ScanProfileWidget::chooseTypes(const QString &chosen, const char *receiver)
{
    // A window of its own, which deletes itself; pressed again, the button opens another one.
    auto *const window = new FileTypesWidget;
    window->setAttribute(Qt::WA_DeleteOnClose); // by its frame, too
    SideWindow::endWithProgram(window);
    connect(window, SIGNAL(selectedTypesSignal(QStringList)), this, receiver);
    window->setCurrentMaskList(MaskEntry::fromLine(chosen));
    window->show();
}
