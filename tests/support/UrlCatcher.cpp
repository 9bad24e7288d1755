// SPDX-License-Identifier: MIT
#include "tests/support/UrlCatcher.h"

#include <QDesktopServices>

#include <utility>

UrlCatcher::UrlCatcher(const QStringList &takenSchemes)
    : schemes(takenSchemes)
{
    for (const QString &scheme : schemes) {
        QDesktopServices::setUrlHandler(scheme, this, "take");
    }
}

UrlCatcher::~UrlCatcher()
{
    for (const QString &scheme : std::as_const(schemes)) {
        QDesktopServices::unsetUrlHandler(scheme);
    }
}

void UrlCatcher::take(const QUrl &url)
{
    taken.append(url);
}

QStringList UrlCatcher::opened() const
{
    QStringList texts;
    for (const QUrl &url : taken) {
        texts.append(url.toString());
    }
    return texts;
}
