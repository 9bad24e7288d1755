// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"

#include <QString>
#include <QStringList>

/** What the command line of twinsift-scan asks for, a plain value. */
struct ScanArguments {
    enum class Action {
        Scan,
        ShowHelp,
        ShowVersion,
        /** The arguments cannot be understood; error says why, in one line. */
        Refuse
    };

    /** The first argument is the name of the program. Looks whether the folders exist. */
    static ScanArguments parse(const QStringList &arguments);

    Action action = Action::Refuse;
    QString error;
    QString helpText;
    /**
     * Absolute, in the order given. A folder that the walk of another one reaches is left out, so
     * that each file is listed once and no file becomes its own duplicate.
     */
    QStringList folders;
    ScanProfile profile;
    bool print0 = false;
    bool printsEvents = false;
    /** The number of signals after which the scan is stopped; 0 for never. */
    int stopAfter = 0;
};
