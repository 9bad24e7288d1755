// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/**
 * The text forms of a mask entry, "Text Files|*.TXT;*.RTF", and of a list of entries in one line.
 * Nothing is trimmed anywhere and empty pieces are kept: a line break that ends an entry stays in
 * its last mask.
 */
namespace MaskEntry
{
/** Name and masks, as typed; a "%1" within the name receives the masks. */
QString fromNameAndMasks(const QString &name, const QString &masks);

/** What stands between the vertical bars; at least one piece. */
QStringList pieces(const QString &entry);

/** The single masks. An entry without a bar, or with more than one, has none. */
QStringList masks(const QString &entry);

/** The masks of all entries of such a line, in order. */
QStringList masksOfLine(const QString &line);

/** Entries in one line, a comma and a space between them; empty entries are left out. */
QString toLine(const QStringList &entries);

/** Splits what toLine() made; an empty line gives one empty entry. */
QStringList fromLine(const QString &line);
} // namespace MaskEntry
