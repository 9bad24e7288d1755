// SPDX-License-Identifier: MIT
#include "tests/ui/progress/OpenedUrls.h"

#include <QDesktopServices>

namespace
{
const QStringList &schemes()
{
    static const QStringList all = {QStringLiteral("http"),
                                    QStringLiteral("https"),
                                    QStringLiteral("mailto")};
    return all;
}
} // namespace

OpenedUrls::OpenedUrls()
{
    for (const QString &scheme : schemes()) {
        QDesktopServices::setUrlHandler(scheme, this, "open");
    }
}

OpenedUrls::~OpenedUrls()
{
    for (const QString &scheme : schemes()) {
        QDesktopServices::unsetUrlHandler(scheme);
    }
}

void OpenedUrls::open(const QUrl &url)
{
    urls.append(url);
}
