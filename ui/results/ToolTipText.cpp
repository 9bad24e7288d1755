// SPDX-License-Identifier: MIT
#include "ui/results/ToolTipText.h"

#include <QRegularExpression>
#include <QTextDocument>

QString ToolTipText::ofPath(const QString &path)
{
    // Only what would be taken for markup, so that a tool tip of text alone keeps the look of one.
    if (!Qt::mightBeRichText(path)) {
        return path;
    }
    // A line break at the end, or of another system, would be lost as it is.
    static const QRegularExpression lineBreak(QStringLiteral("\r\n|\r|\n"));
    const QString escaped = path.toHtmlEscaped().replace(lineBreak, QStringLiteral("<br>"));
    return QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>").arg(escaped);
}
