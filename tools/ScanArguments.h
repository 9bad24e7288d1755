// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"
#include "engine/WalkOptions.h"

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
    enum class Format { Text, Json, Csv };
    /** Groups in the order in which they were found; by first path; largest size or number first. */
    enum class Order { Found, Path, Size, Count };

    /**
     * The first argument is the name of the program. Looks whether the folders exist, and reads the
     * list of folders that it is told to read.
     */
    static ScanArguments parse(const QStringList &arguments);

    Action action = Action::Refuse;
    QString error;
    QString helpText;
    /** See FolderArguments::reduce(). */
    QStringList folders;
    ScanProfile profile;
    WalkOptions walkOptions;

    Format format = Format::Text;
    Order order = Order::Found;
    /** The groups as the window shows them, and no others. */
    bool isJoined = false;
    bool omitsFirst = false;
    bool print0 = false;
    bool separatesGroups = true;
    bool printsSummary = false;
    bool isQuiet = false;
    bool printsMessages = true;
    bool printsEvents = false;
    /** The number of signals after which the scan is stopped; 0 for never. */
    int stopAfter = 0;
};
