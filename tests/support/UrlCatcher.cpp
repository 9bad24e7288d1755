// SPDX-License-Identifier: MIT
#include "tests/support/UrlCatcher.h"

#include <QDesktopServices>

UrlCatcher::UrlCatcher(const QStringList &taken)
    : schemes(taken)
{
    for (const QString &scheme : schemes) {
        QDesktopServices::setUrlHandler(scheme, this, "take");
    }
}

UrlCatcher::~UrlCatcher()
{
    for (const QString &scheme : qAsConst(schemes)) {
        QDesktopServices::unsetUrlHandler(scheme);
    }
}

void UrlCatcher::take(const QUrl &url)
{
    urls.append(url.toString());
}
