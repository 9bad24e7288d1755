// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QEnterEvent;
class QEvent;
class QFont;

/** What Qt 5 and Qt 6 spell differently, or do differently of their own accord. */
namespace QtCompat
{
/** What QWidget::enterEvent() is handed. */
#if QT_VERSION_MAJOR < 6
using EnterEvent = QEvent;
#else
using EnterEvent = QEnterEvent;
#endif

/** Leaves nothing of the font open, which a painter would take from its widget's font. */
void closeFont(QFont *font);

/**
 * Keeps the window as large on the screen as its minimum says where the desktop asks for 125 or 150 %:
 * Qt 5 follows such a wish by its fonts alone, Qt 6 would enlarge everything. To be called before the
 * application is made; QT_SCALE_FACTOR_ROUNDING_POLICY overrides it.
 */
void useWholeRatios();

/**
 * Qt 6 reads no picture of more than 128 or 256 MB, of which Qt 5 knows nothing. For those who look
 * at the size of a picture before they read it; for the whole process. Safe on any thread.
 */
void liftPictureLimit();
} // namespace QtCompat
