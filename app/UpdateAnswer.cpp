// SPDX-License-Identifier: MIT
#include "app/UpdateAnswer.h"

#include "engine/LocalText.h"

#include <QStringList>
#include <QUrl>

namespace
{
// As far as the first zero byte.
QString text(const QByteArray &line)
{
    return QString::fromUtf8(line.constData());
}

// What stands between the first "=" of the line and the next one.
std::optional<QString> value(const QString &line)
{
    const QStringList parts = line.split(QLatin1Char('='));
    return parts.size() > 1 ? std::make_optional(parts.at(1)) : std::nullopt;
}
} // namespace

std::optional<UpdateAnswer> UpdateAnswer::fromLines(const QList<QByteArray> &lines)
{
    if (lines.size() < 2) {
        return std::nullopt;
    }
    const QString firstLine = text(lines.at(0));
    if (!firstLine.contains(QStringLiteral("version"))) {
        return std::nullopt;
    }
    const std::optional<QString> announced = value(firstLine);
    const std::optional<QString> page = value(text(lines.at(1)));
    if (!announced || !announced->contains(QStringLiteral(" Build ")) || !page) {
        return std::nullopt;
    }
    QString url = *page;
    url.remove(QLatin1Char('\n'));
    url = QUrl::fromPercentEncoding(LocalText::encode(url));
    url.remove(QLatin1Char('\n'));
    // Single characters, not the two pieces: the main window takes the version for one digit.
    return UpdateAnswer{announced->at(0), announced->at(1), url};
}
