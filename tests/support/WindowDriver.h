// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

class ModalDriver;
class QStackedWidget;
class QTableView;
class QTreeView;
class QWidget;

/**
 * Drives the program's window the way a user does, by mouse and keys on what is visible. Things are
 * found by what they say; one that is missing, or does not come in time, ends a step with false
 * and a line in problem().
 */
class WindowDriver final
{
public:
    /** Waits at most that long for anything that a step needs. */
    static constexpr int maxWaitMilliseconds = 60000;

    /** The modal driver answers the boxes that steps open; neither is owned. */
    WindowDriver(QWidget *mainWindow, ModalDriver *modalDriver);

    /** Index of the page that is shown. */
    int page() const;
    bool waitForPage(int index);

    /** A visible button, radio button, check box or clickable label, by its text or its name. */
    bool click(const QString &text);
    bool isEnabled(const QString &text) const;
    bool waitUntilEnabled(const QString &text);
    /** Whether some visible label holds the text. */
    bool shows(const QString &text) const;
    bool waitUntilShown(const QString &text);

    /** "Select folder..." and the dialog behind it, then until the tree has loaded the folder. */
    bool chooseFolder(const QString &path);
    /** A click on the check box of a folder that the tree has loaded. */
    bool tickFolder(const QString &path);
    Qt::CheckState folderState(const QString &path) const;

    QTreeView *tree() const;
    QTableView *table() const;
    /** Display texts of a column of the results, from the top. */
    QStringList column(int column) const;
    /** A click on the check box of a row of the results. */
    bool clickRow(int row);

    /** The visible window of that class beside the main one, e.g. the list of file types. */
    QWidget *otherWindow(const char *className) const;
    static bool clickIn(QWidget *where, const QString &text);

    QString problem() const { return lastProblem; }

private:
    bool fail(const QString &what);
    QStackedWidget *pages() const;

    QWidget *window;
    ModalDriver *boxes;
    QString lastProblem;
};
