// SPDX-License-Identifier: MIT
#include "engine/FileMasks.h"

#include <algorithm>

namespace
{
bool isPlainCharacter(QChar character)
{
    return character == QLatin1Char('.') || character == QLatin1Char('_')
        || character == QLatin1Char('-')
        || (character.unicode() < 128 && character.isLetterOrNumber());
}

bool isStarAndEnding(const QString &mask)
{
    return mask.size() > 1 && mask.startsWith(QLatin1Char('*'))
        && std::all_of(mask.cbegin() + 1, mask.cend(), isPlainCharacter);
}
} // namespace

FileMasks::FileMasks(const QStringList &masks)
    : isEveryFile(masks.isEmpty() || masks.contains(QStringLiteral("*.*")))
{
    for (const QString &mask : masks) {
        if (isStarAndEnding(mask)) {
            endings.append(mask.mid(1));
            continue;
        }
        const QRegularExpression pattern(QRegularExpression::wildcardToRegularExpression(mask),
                                         QRegularExpression::CaseInsensitiveOption);
        if (pattern.isValid()) {
            patterns.append(pattern);
        }
    }
}

bool FileMasks::match(const QString &fileName) const
{
    if (isEveryFile) {
        return true;
    }
    const auto endsName = [&fileName](const QString &ending) {
        return fileName.endsWith(ending, Qt::CaseInsensitive);
    };
    const auto matchesName = [&fileName](const QRegularExpression &pattern) {
        return pattern.match(fileName).hasMatch();
    };
    return std::any_of(endings.cbegin(), endings.cend(), endsName)
        || std::any_of(patterns.cbegin(), patterns.cend(), matchesName);
}
