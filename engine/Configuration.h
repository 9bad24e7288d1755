// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"
#include "engine/WalkOptions.h"

#include <QObject>
#include <QStringList>

/**
 * The settings of the scan to run, one object for the process.
 *
 * The GUI thread writes them before it posts the start of a scan, the engine's thread reads them
 * while the scan runs. There is no lock: nobody may write between a start and the end of its scan.
 */
class Configuration final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Configuration)

public:
    /** Made on first use and never destroyed. */
    static Configuration *instance();

    /** The main window puts "*.*" here; the masks of a scan stand in its profile. */
    QStringList nameFilters;
    /** Absolute paths of the folders to scan, in the order in which they are scanned. */
    QStringList folders;
    ScanProfile scanProfile;
    /** The window leaves these as they are. */
    WalkOptions walkOptions;
    /** Whether ScanFindings is to name what could not be read. */
    bool keepsSkipped = false;

private:
    Configuration() = default;
};
