// SPDX-License-Identifier: MIT
#include "ui/config/ScanProfileWidget.h"

#include <QLineEdit>
#include <QVBoxLayout>

ScanProfileWidget::ScanProfileWidget(const ScanProfile &profile, QWidget *parent)
    : QWidget(parent)
    , scanProfile(profile)
{
    includeLineEdit = new QLineEdit(QStringLiteral("Any File|*.*"));
    includeLineEdit->setReadOnly(true);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(includeLineEdit);
}

ScanProfile ScanProfileWidget::currentScanProfile() const
{
    ScanProfile profile;
    const QStringList entries = includeLineEdit->text().split(QStringLiteral(", "));
    for (const QString &entry : entries) {
        const QStringList parts = entry.split(QLatin1Char('|'));
        if (parts.size() == 2) {
            profile.includeMasks += parts.at(1).split(QLatin1Char(';'));
        }
    }
    return profile;
}

void ScanProfileWidget::onIncludeListChanged(const QStringList &list)
{
    includeLineEdit->setText(list.join(QStringLiteral(", ")));
}
