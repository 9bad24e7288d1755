// SPDX-License-Identifier: MIT
#include "ui/results/PathText.h"

#include <QChar>

#include <algorithm>

namespace
{
constexpr ushort leftToRightMark = 0x200E;

// The controls of the Unicode bidirectional algorithm (UAX #9), its marks included.
bool turnsDirection(QChar character)
{
    const ushort code = character.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E)
        || (code >= 0x2066 && code <= 0x2069);
}

// Those from here on may be of scripts that are written from the right, also outside the first plane.
bool mayBeFromTheRight(QChar character)
{
    return character.unicode() >= 0x0590;
}
} // namespace

QString PathText::shown(const QString &path)
{
    if (std::none_of(path.cbegin(), path.cend(), mayBeFromTheRight)) {
        return path;
    }
    QString text;
    for (const QChar character : path) {
        text += turnsDirection(character) ? QChar(QChar::ReplacementCharacter) : character;
        if (character == QLatin1Char('/')) {
            // Between two names from the right it would belong to them, and the names change places.
            text += QChar(leftToRightMark);
        }
    }
    return text;
}
