// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"

#include <QWidget>

class QLineEdit;

/** The options of a scan: for now the file types to include alone. Lives on the GUI thread. */
class ScanProfileWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ScanProfileWidget)

public:
    ScanProfileWidget(const ScanProfile &profile, QWidget *parent);

    ScanProfile currentScanProfile() const;

public slots:
    void onIncludeListChanged(const QStringList &list);

private:
    ScanProfile scanProfile;
    QLineEdit *includeLineEdit = nullptr;
};
