// SPDX-License-Identifier: MIT
#include "ui/results/ToolTipText.h"

#include <QTextDocument>

QString ToolTipText::ofPath(const QString &path)
{
    // Only what would be taken for markup, so that a tool tip of text alone keeps the look of one.
    return Qt::mightBeRichText(path)
        ? QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>").arg(path.toHtmlEscaped())
        : path;
}
