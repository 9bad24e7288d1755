// SPDX-License-Identifier: MIT
#include "ui/filetypes/MaskEntry.h"

namespace
{
QString entrySeparator()
{
    return QStringLiteral(", ");
}
} // namespace

QString MaskEntry::fromNameAndMasks(const QString &name, const QString &masks)
{
    // One after the other, not both at once: markers within the name are filled as well.
    const QString named = QStringLiteral("%1|%2").arg(name);
    return named.arg(masks);
}

QStringList MaskEntry::pieces(const QString &entry)
{
    return entry.split(QLatin1Char('|'));
}

QStringList MaskEntry::masks(const QString &entry)
{
    const QStringList parts = pieces(entry);
    return parts.size() == 2 ? parts.at(1).split(QLatin1Char(';')) : QStringList();
}

QStringList MaskEntry::masksOfLine(const QString &line)
{
    QStringList all;
    const QStringList entries = fromLine(line);
    for (const QString &entry : entries) {
        all.append(masks(entry));
    }
    return all;
}

QString MaskEntry::toLine(const QStringList &entries)
{
    QString line;
    for (const QString &entry : entries) {
        if (entry.isEmpty()) {
            continue;
        }
        if (!line.isEmpty()) {
            line.append(entrySeparator());
        }
        line.append(entry);
    }
    return line;
}

QStringList MaskEntry::fromLine(const QString &line)
{
    return line.split(entrySeparator());
}
