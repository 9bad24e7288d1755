// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>

/**
 * Takes the addresses of the given schemes that the program opens, instead of the desktop. An
 * address of another scheme cannot be opened while no desktop is there, which is what tests have.
 */
class UrlCatcher final : public QObject
{
    Q_OBJECT

public:
    explicit UrlCatcher(const QStringList &schemes = {QStringLiteral("http"),
                                                      QStringLiteral("https"),
                                                      QStringLiteral("mailto")});
    ~UrlCatcher() override;

    /** In the order in which they were opened. */
    QList<QUrl> urls() const { return taken; }
    QStringList opened() const;

public slots:
    void take(const QUrl &url);

private:
    QStringList schemes;
    QList<QUrl> taken;
};
