// SPDX-License-Identifier: MIT
#include "ui/progress/ClickableLabel.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace
{
constexpr int iconMargin = 2;
constexpr int emptyHeight = 32;
constexpr int captionMargin = 6;
constexpr int captionLeft = 13;
constexpr int captionInset = 15;
constexpr qreal cornerRadius = 5.0;
constexpr int highlightAlpha = 64;

// A screen reader meets a button that it can press.
class ButtonInterface final : public QAccessibleWidget
{
public:
    explicit ButtonInterface(ClickableLabel *label)
        : QAccessibleWidget(label, QAccessible::Button)
    {
    }

    QStringList actionNames() const override
    {
        return widget()->isEnabled() ? QStringList(pressAction()) + QAccessibleWidget::actionNames()
                                     : QStringList();
    }

    void doAction(const QString &actionName) override
    {
        if (actionName == pressAction()) {
            static_cast<ClickableLabel *>(widget())->click();
        } else {
            QAccessibleWidget::doAction(actionName);
        }
    }
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *const label = qobject_cast<ClickableLabel *>(object);
    return label != nullptr ? new ButtonInterface(label) : nullptr;
}

void installInterface()
{
    static bool installed = false;
    if (!installed) {
        QAccessible::installFactory(makeInterface);
        installed = true;
    }
}
} // namespace

ClickableLabel::ClickableLabel(const QString &caption, QWidget *parent)
    : QWidget(parent)
    , text(caption)
{
    installInterface();
    // The icon stands at the top, the caption in the middle: no taller than the icon, they agree.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(text);
    adjustSize();
}

void ClickableLabel::setText(const QString &newText)
{
    text = newText;
    setAccessibleName(text);
    adjustSize();
}

void ClickableLabel::setTextFont(const QFont &font)
{
    textFont = font;
    adjustSize();
}

void ClickableLabel::setPixmap(const QPixmap &newPixmap)
{
    pixmap = newPixmap;
    adjustSize();
}

void ClickableLabel::adjustSize()
{
    QSize size(0, emptyHeight);
    if (!pixmap.isNull()) {
        size = iconSize() + QSize(2 * iconMargin, 2 * iconMargin);
    }
    if (!text.isEmpty()) {
        size.rwidth() += QFontMetrics(textFont).horizontalAdvance(text) + captionMargin;
    }
    setMinimumSize(size);
    updateGeometry();
    update();
}

void ClickableLabel::click()
{
    if (isEnabled()) {
        emit clicked();
    }
}

QSize ClickableLabel::sizeHint() const
{
    // The minimum width is less than the caption's rectangle needs.
    const int captionWidth = text.isEmpty() ? 0 : QFontMetrics(textFont).horizontalAdvance(text);
    const int wholeWidth = text.isEmpty() ? 0 : iconSize().width() + captionInset + captionWidth;
    return QSize(wholeWidth, 0).expandedTo(minimumSize());
}

void ClickableLabel::mousePressEvent(QMouseEvent *event)
{
    Q_UNUSED(event)
    emit clicked();
}

void ClickableLabel::keyPressEvent(QKeyEvent *event)
{
    const bool presses = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return
        || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Select;
    if (!presses) {
        QWidget::keyPressEvent(event);
    } else if (!event->isAutoRepeat()) {
        click();
    }
}

void ClickableLabel::enterEvent(QtCompat::EnterEvent *event)
{
    setCursor(Qt::PointingHandCursor);
    hovered = true;
    repaint();
    QWidget::enterEvent(event);
}

void ClickableLabel::leaveEvent(QEvent *event)
{
    setCursor(Qt::ArrowCursor);
    hovered = false;
    repaint();
    QWidget::leaveEvent(event);
}

void ClickableLabel::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    if (!text.isEmpty()) {
        paintHighlight(&painter);
    }
    if (!pixmap.isNull()) {
        painter.drawPixmap(QPointF(iconMargin, iconMargin), pixmap);
    }
    paintCaption(&painter);
    if (hasFocus()) {
        paintFocus(&painter);
    }
}

QSize ClickableLabel::iconSize() const
{
    // A null pixmap has a ratio of 0.
    return pixmap.isNull() ? QSize(0, 0)
                           : (QSizeF(pixmap.size()) / pixmap.devicePixelRatioF()).toSize();
}

void ClickableLabel::paintHighlight(QPainter *painter) const
{
    QColor color(isEnabled() ? QStringLiteral("#add8e6") : QStringLiteral("#cfcfc4"));
    color.setAlpha(hovered ? highlightAlpha : 0);
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawRoundedRect(0, 0, width(), height(), cornerRadius, cornerRadius, Qt::AbsoluteSize);
}

void ClickableLabel::paintCaption(QPainter *painter) const
{
    const int iconWidth = iconSize().width();
    const QRect place(iconWidth + captionLeft,
                      iconMargin,
                      width() - iconWidth - captionInset,
                      height() - 2 * iconMargin);
    // A painter takes what a font leaves open from the widget's font; nothing is left open here.
    QFont captionFont = textFont;
    QtCompat::closeFont(&captionFont);
    painter->setFont(captionFont);
    painter->setPen(textColor);
    painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter, text);
}

// Styles show it only to those who move the focus by keys.
void ClickableLabel::paintFocus(QPainter *painter) const
{
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.backgroundColor = palette().color(QPalette::Window);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, painter, this);
}
