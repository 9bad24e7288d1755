// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QHBoxLayout;
class QLabel;

/**
 * The about box: the logo, the version, the maker's addresses. A window of its own that is not
 * modal; whoever shows it decides what becomes of it when it is closed.
 */
class AboutWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(AboutWidget)

public:
    explicit AboutWidget(QWidget *parent = nullptr);

protected:
    /** Escape closes the box. */
    void keyPressEvent(QKeyEvent *event) override;

private:
    QHBoxLayout *createHeader();
    QLabel *createText();
    QHBoxLayout *createFooter();
};
