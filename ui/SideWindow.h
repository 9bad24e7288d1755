// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/** Windows that stand beside the main one without being its children. */
namespace SideWindow
{
/** Lets such a window keep nobody: the program ends with its main window, and deletes it then. */
void endWithProgram(QWidget *window);
} // namespace SideWindow
