// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/**
 * The program, in a process of its own: it starts a scan, opens a dialog where one is asked for, and
 * is left. Its status is 0, or 3 when what it was to be left in did not come.
 */
namespace LeavingProgram
{
/** How it is left: "close" is the frame, "exit" the menu, "quit" the end of the session. */
QStringList ways();

/**
 * Dialogs that can be open beside a scan, or on the results of one. One that blocks the window is
 * answered first ("Yes" to the end of a scan, otherwise "No", "Ok" or the escape key), and the window
 * is left within the same moment; the end of the session does not wait for an answer.
 */
QStringList dialogs();
/** Whether the dialog is one of the results, which come before it. */
bool isOnResults(const QString &dialog);

/** Arguments of a process that is left that many milliseconds after its scan has been asked for. */
QStringList arguments(const QString &mode,
                      const QString &way,
                      int delay,
                      const QStringList &folders);
/** The dialog is opened after that time (on the results: after the scan), and left in after delay. */
QStringList arguments(const QString &mode,
                      const QString &way,
                      int delay,
                      const QString &dialog,
                      int opening,
                      const QStringList &folders);

/** Whether the process has been started with such arguments. */
bool isAsked(int argc, char **argv);
int run(int argc, char **argv);
} // namespace LeavingProgram
