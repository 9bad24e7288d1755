// SPDX-License-Identifier: MIT
#include "ui/filetypes/FileTypesEditWidget.h"

#include "ui/filetypes/MaskEntry.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr int initialWidth = 480;
}

FileTypesEditWidget::FileTypesEditWidget(QWidget *parent)
    : QWidget(parent)
{
    setWindowTitle(QStringLiteral("Edit Mask"));
    auto *const layout = new QVBoxLayout(this);
    nameLineEdit = addField(QStringLiteral("Name"));
    maskLineEdit = addField(QStringLiteral("Mask"));
    okButton = createButton(QStringLiteral("Ok"));
    cancelButton = createButton(QStringLiteral("Cancel"));
    connect(nameLineEdit, SIGNAL(returnPressed()), okButton, SLOT(click()));
    connect(maskLineEdit, SIGNAL(returnPressed()), okButton, SLOT(click()));
    auto *const buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(okButton);
    buttonRow->addWidget(cancelButton);
    layout->addLayout(buttonRow);
    layout->addStretch();
    resize(initialWidth, sizeHint().height());
}

void FileTypesEditWidget::setCurrentMask(const QString &mask)
{
    currentMask = mask;
    // What stands behind a second bar is not shown, and so it is lost by "Ok".
    const QStringList pieces = MaskEntry::pieces(mask);
    if (pieces.size() >= 2) {
        nameLineEdit->setText(pieces.at(0));
        maskLineEdit->setText(pieces.at(1));
    }
}

void FileTypesEditWidget::setAllFilesMask(const QStringList &masks)
{
    allMasks = masks;
}

void FileTypesEditWidget::onButtonClicked()
{
    if (sender() == cancelButton) {
        finish();
    } else if (sender() == okButton) {
        accept();
    }
}

QLineEdit *FileTypesEditWidget::addField(const QString &name)
{
    auto *const label = new QLabel(name, this);
    auto *const field = new QLineEdit(this);
    label->setBuddy(field);
    layout()->addWidget(label);
    layout()->addWidget(field);
    return field;
}

QPushButton *FileTypesEditWidget::createButton(const QString &text)
{
    auto *const button = new QPushButton(text, this);
    connect(button, SIGNAL(clicked(bool)), this, SLOT(onButtonClicked()));
    return button;
}

void FileTypesEditWidget::accept()
{
    const QString reason = refusal();
    if (!reason.isEmpty()) {
        QMessageBox::warning(nullptr, QStringLiteral("Warning"), reason, QMessageBox::Ok);
        return;
    }
    const QString mask = MaskEntry::fromNameAndMasks(nameLineEdit->text(), maskLineEdit->text());
    if (currentMask.isEmpty()) {
        emit addNewMask(mask);
    } else {
        emit editMask(currentMask, mask);
    }
    finish();
}

QString FileTypesEditWidget::refusal() const
{
    if (nameLineEdit->text().isEmpty() || maskLineEdit->text().isEmpty()) {
        return QStringLiteral("One of fields are empty!");
    }
    // Against whole entries: only an entry that is nothing but a name stands in the way of a name.
    if (currentMask.isEmpty() && allMasks.contains(nameLineEdit->text())) {
        return QStringLiteral("Mask with current name was created. Please, use another name.");
    }
    return {};
}

void FileTypesEditWidget::finish()
{
    // A second press may still arrive before the deletion does.
    okButton->disconnect(this);
    cancelButton->disconnect(this);
    deleteLater();
}
