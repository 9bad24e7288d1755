// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/ModalDriver.h"
#include "tests/support/WindowDriver.h"

#include <QDir>
#include <QString>
#include <QStringList>

#include <functional>

class MainWindow;

/**
 * Shows what the program does: plays it through its real window, by mouse and keys alone, and
 * leaves a picture of each page and the saved list in a folder.
 *
 * It prints a line for each step. A step that fails (an unexpected dialog, a missing page, one that
 * takes too long) ends the tour with a line that says why and a picture of that moment.
 */
class Tour final
{
public:
    /** With mayDelete false the tour ends before anything is deleted. */
    Tour(MainWindow *mainWindow, const QString &toured, const QString &place, bool mayDelete);

    /** True when every step has been done. */
    bool play();

private:
    struct Step {
        QString text;
        std::function<bool()> act;
    };

    QList<Step> steps();
    bool showWindow();
    bool chooseFolder();
    bool pickOptions();
    bool pickTypes();
    bool startScan();
    bool openResults();
    bool lookAtPicture();
    bool saveList();
    bool moveToTrash();
    bool comeBack();
    bool say(const QString &line) const;
    bool takePicture(const QString &name) const;
    void summarise() const;

    MainWindow *window;
    ModalDriver boxes;
    WindowDriver driver;
    QString folder;
    QDir output;
    bool deleting;
    QString problem;
    int groupsCount = 0;
    int filesCount = 0;
    qint64 bytes = 0;
};
