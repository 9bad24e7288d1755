// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

/** Keeps what the program asks the desktop to open, instead of opening it. */
class OpenedUrls final : public QObject
{
    Q_OBJECT

public:
    OpenedUrls();
    ~OpenedUrls() override;

    QList<QUrl> urls;

public slots:
    void open(const QUrl &url);
};
