// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class ClickableLabel;
class QLabel;

/**
 * The strip at the bottom of the main window: two icons that open the program's pages elsewhere,
 * a left message and a right one. Belongs to the window's layout.
 */
class StatusBarWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(StatusBarWidget)

public:
    explicit StatusBarWidget(QWidget *parent = nullptr);

    /** Rich text; its links open in the desktop's browser. */
    void showLeftMessage(const QString &message);
    void showRightMessage(const QString &message);

public slots:
    void openTwitter();
    void openFacebook();

private:
    QLabel *createMessageLabel(Qt::Alignment alignment);
    ClickableLabel *createIcon(const QString &path, const QString &name);

    QLabel *leftLabel = nullptr;
    QLabel *rightLabel = nullptr;
};
