// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/progress/ClickableLabel.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QPainter>
#include <QSignalSpy>
#include <QWindow>

namespace
{
QString caption()
{
    return QStringLiteral("Caption");
}

QPixmap square(int pixels, const QColor &color)
{
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(color);
    return pixmap;
}

int widthOf(const QString &text, const QFont &font = QFont())
{
    return QFontMetrics(font).horizontalAdvance(text);
}

QImage render(QWidget *widget)
{
    return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QColor at(QWidget *widget, int x, int y)
{
    return render(widget).pixelColor(x, y);
}

bool isNear(const QColor &seen, const QColor &wanted)
{
    return qAbs(seen.red() - wanted.red()) <= 2 && qAbs(seen.green() - wanted.green()) <= 2
        && qAbs(seen.blue() - wanted.blue()) <= 2;
}

// The pixels that are not the white ground, as a rectangle.
QRect inked(const QImage &image, const QRect &part)
{
    QRect found;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::white)) {
                found |= QRect(x, y, 1, 1);
            }
        }
    }
    return found;
}

// A label in a white window, with room around it for the mouse.
struct Shown {
    Q_DISABLE_COPY(Shown)

    explicit Shown(const QString &text)
        // cppcheck-suppress noCopyConstructor ; it does not see that there is none to be
        : label(new ClickableLabel(text, &window))
    {
        QPalette white = window.palette();
        white.setColor(QPalette::Window, Qt::white);
        window.setPalette(white);
        window.setAutoFillBackground(true);
        window.resize(400, 200);
        label->setGeometry(50, 50, 200, 60);
    }

    bool show()
    {
        window.show();
        const bool exposed = QTest::qWaitForWindowExposed(&window);
        // The first move that reaches a window only tells it that the mouse is there.
        QTest::mouseMove(window.windowHandle(), QPoint(380, 180));
        moveMouseOut();
        return exposed;
    }
    void moveMouseIn() const { QTest::mouseMove(window.windowHandle(), QPoint(150, 80)); }
    void moveMouseOut() const { QTest::mouseMove(window.windowHandle(), QPoint(390, 190)); }

    QWidget window;
    ClickableLabel *label;
};

class PaintCounter final : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

class PressCounter final : public QWidget
{
public:
    int presses = 0;
    int keys = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
    void keyPressEvent(QKeyEvent *) override { ++keys; }
};
} // namespace

class tst_ClickableLabel final : public TestCase
{
    Q_OBJECT

private slots:
    void minimumSize_data();
    void minimumSize();
    void minimumSizeFollowsTheSetters();
    void iconOfADenseScreenCountsLogicalPixels();
    void sizeHintShowsTheWholeCaption_data();
    void sizeHintShowsTheWholeCaption();
    void keepsItsHeightInALayout();
    void pressClicks_data();
    void pressClicks();
    void doubleClickClicksTwice();
    void disabledLabelDoesNotClick();
    void keysClick();
    void focusComesByTabAlone();
    void highlightUnderTheMouse_data();
    void highlightUnderTheMouse();
    void screenFollowsTheMouse();
    void wholeDrawing_data();
    void wholeDrawing();
    void noHighlightWithoutText();
    void pointerShape();
    void iconStandsTwoPixelsIn();
    void captionPlace_data();
    void captionPlace();
    void captionColor();
    void widgetFontLeavesTheCaption();
    void textFontDrawsTheCaption();
    void clickedIsTheOnlySignal();
    void accessibleButton();
};

void tst_ClickableLabel::minimumSize_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("icon");
    QTest::addColumn<QSize>("size");

    const int textWidth = widthOf(caption());
    QTest::newRow("neither") << QString() << 0 << QSize(0, 32);
    QTest::newRow("text") << caption() << 0 << QSize(textWidth + 6, 32);
    QTest::newRow("icon") << QString() << 48 << QSize(52, 52);
    QTest::newRow("small icon") << QString() << 10 << QSize(14, 14);
    QTest::newRow("both") << caption() << 48 << QSize(52 + textWidth + 6, 52);
}

void tst_ClickableLabel::minimumSize()
{
    // The minimum size is made of the icon, the caption and fixed margins.
    QFETCH(QString, text);
    QFETCH(int, icon);
    ClickableLabel label(text);
    if (icon > 0) {
        label.setPixmap(square(icon, Qt::red));
    }
    QTEST(label.minimumSize(), "size");
}

void tst_ClickableLabel::minimumSizeFollowsTheSetters()
{
    // Each setter fits the minimum size to what is shown.
    ClickableLabel label(caption());
    label.setText(QStringLiteral("A much longer caption"));
    QCOMPARE(label.minimumWidth(), widthOf(QStringLiteral("A much longer caption")) + 6);
    QFont large;
    large.setPixelSize(40);
    label.setTextFont(large);
    QCOMPARE(label.minimumWidth(), widthOf(QStringLiteral("A much longer caption"), large) + 6);
    label.setText(QString());
    QCOMPARE(label.minimumSize(), QSize(0, 32));
    label.setPixmap(square(20, Qt::red));
    QCOMPARE(label.minimumSize(), QSize(24, 24));
    label.setPixmap(QPixmap());
    QCOMPARE(label.minimumSize(), QSize(0, 32));
}

void tst_ClickableLabel::iconOfADenseScreenCountsLogicalPixels()
{
    // An icon of ratio 2 takes half as much room as it has pixels.
    QPixmap icon = square(96, Qt::red);
    icon.setDevicePixelRatio(2);
    ClickableLabel label((QString()));
    label.setPixmap(icon);
    QCOMPARE(label.minimumSize(), QSize(52, 52));
}

void tst_ClickableLabel::sizeHintShowsTheWholeCaption_data()
{
    QTest::addColumn<int>("icon");
    QTest::newRow("without icon") << 0;
    QTest::newRow("with icon") << 48;
}

void tst_ClickableLabel::sizeHintShowsTheWholeCaption()
{
    // The size that a layout gives shows as much of the caption as any wider one.
    QFETCH(int, icon);
    Shown shown(QStringLiteral("Stop SearchingW"));
    if (icon > 0) {
        shown.label->setPixmap(square(icon, Qt::white));
    }
    const QSize hint = shown.label->sizeHint();
    QVERIFY(hint.width() > shown.label->minimumWidth());
    QCOMPARE(hint.height(), shown.label->minimumHeight());
    shown.label->resize(hint.width() + 100, hint.height());
    QVERIFY(shown.show());
    const QImage wide = render(shown.label);
    shown.label->resize(hint);
    const QImage hinted = render(shown.label);
    QCOMPARE(hinted, wide.copy(QRect(QPoint(), hinted.size())));
    QCOMPARE(inked(hinted, hinted.rect()), inked(wide, wide.rect()));
}

void tst_ClickableLabel::keepsItsHeightInALayout()
{
    // A tall row leaves the label as high as its icon, so that icon and caption stay in line.
    QWidget window;
    auto *const layout = new QHBoxLayout(&window);
    auto *const label = new ClickableLabel(caption());
    label->setPixmap(square(48, Qt::red));
    layout->addWidget(label);
    window.resize(300, 300);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(label->height(), 52);
}

void tst_ClickableLabel::pressClicks_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("back") << int(Qt::BackButton);
}

void tst_ClickableLabel::pressClicks()
{
    // The press of any button clicks once, at once, and goes no further; the release does nothing.
    QFETCH(int, button);
    const auto pressed = static_cast<Qt::MouseButton>(button);
    PressCounter window;
    ClickableLabel label(caption(), &window);
    const QSignalSpy clicks(&label, SIGNAL(clicked()));
    QTest::mousePress(&label, pressed);
    QCOMPARE(clicks.size(), 1);
    QTest::mouseRelease(&label, pressed);
    QCOMPARE(clicks.size(), 1);
    QCOMPARE(window.presses, 0);
}

void tst_ClickableLabel::doubleClickClicksTwice()
{
    // The second press of a double click is a press like any other.
    ClickableLabel label(caption());
    const QSignalSpy clicks(&label, SIGNAL(clicked()));
    QTest::mouseClick(&label, Qt::LeftButton);
    QTest::mouseDClick(&label, Qt::LeftButton);
    QCOMPARE(clicks.size(), 2);
}

void tst_ClickableLabel::disabledLabelDoesNotClick()
{
    // No press, key or call clicks a disabled label.
    ClickableLabel label(caption());
    label.setEnabled(false);
    // So says the test library of Qt 6, of any widget that is disabled.
    allowMessages(QRegularExpression(QStringLiteral("event .*not accepted by receiving widget")));
    const QSignalSpy clicks(&label, SIGNAL(clicked()));
    QTest::mouseClick(&label, Qt::LeftButton);
    QTest::keyClick(&label, Qt::Key_Space);
    label.click();
    QCOMPARE(clicks.size(), 0);
    label.setEnabled(true);
    QTest::mouseClick(&label, Qt::LeftButton);
    QCOMPARE(clicks.size(), 1);
}

void tst_ClickableLabel::keysClick()
{
    // Space and Return click, a held key does not repeat, other keys go to the parent.
    PressCounter window;
    ClickableLabel label(caption(), &window);
    const QSignalSpy clicks(&label, SIGNAL(clicked()));
    QTest::keyClick(&label, Qt::Key_Space);
    QTest::keyClick(&label, Qt::Key_Return);
    QTest::keyClick(&label, Qt::Key_Enter);
    QCOMPARE(clicks.size(), 3);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    QCoreApplication::sendEvent(&label, &repeated);
    QCOMPARE(clicks.size(), 3);
    QCOMPARE(window.keys, 0);
    QTest::keyClick(&label, Qt::Key_A);
    QCOMPARE(clicks.size(), 3);
    QCOMPARE(window.keys, 1);
}

void tst_ClickableLabel::focusComesByTabAlone()
{
    // Tab reaches the label and shows where the focus is; a press leaves the focus where it was.
    Shown shown(caption());
    ClickableLabel other(QStringLiteral("Other"), &shown.window);
    other.setGeometry(50, 120, 200, 60);
    QVERIFY(shown.show());
    shown.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&shown.window));
    other.setFocus();
    const QImage before = render(shown.label);
    QTest::mouseClick(shown.label, Qt::LeftButton);
    QVERIFY(other.hasFocus());
    QTest::keyClick(&shown.window, Qt::Key_Tab);
    QVERIFY(shown.label->hasFocus());
    QVERIFY(render(shown.label) != before);
}

void tst_ClickableLabel::highlightUnderTheMouse_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QColor>("color");

    // A quarter (64 of 255) of "#add8e6" and of "#cfcfc4" on white.
    QTest::newRow("enabled") << true << QColor(234, 245, 249);
    QTest::newRow("disabled") << false << QColor(243, 243, 240);
}

void tst_ClickableLabel::highlightUnderTheMouse()
{
    // The highlight comes with the mouse, fills the label to its rounded corners, and goes again.
    QFETCH(bool, enabled);
    QFETCH(QColor, color);
    Shown shown(caption());
    shown.label->setEnabled(enabled);
    QVERIFY(shown.show());
    shown.moveMouseOut();
    QCOMPARE(at(shown.label, 190, 30), QColor(Qt::white));
    shown.moveMouseIn();
    QTRY_VERIFY2(isNear(at(shown.label, 190, 30), color),
                 qPrintable(at(shown.label, 190, 30).name()));
    QVERIFY(isNear(at(shown.label, 199, 30), color));
    QVERIFY(isNear(at(shown.label, 100, 0), color));
    QVERIFY(isNear(at(shown.label, 5, 5), color));
    QCOMPARE(at(shown.label, 0, 0), QColor(Qt::white));
    QCOMPARE(at(shown.label, 199, 59), QColor(Qt::white));
    shown.moveMouseOut();
    QTRY_COMPARE(at(shown.label, 190, 30), QColor(Qt::white));
}

void tst_ClickableLabel::screenFollowsTheMouse()
{
    // The label repaints itself as the mouse comes and as it goes, not only when somebody asks.
    Shown shown(caption());
    QVERIFY(shown.show());
    QTRY_COMPARE(shown.label->cursor().shape(), Qt::ArrowCursor);
    QCoreApplication::processEvents();
    PaintCounter counter;
    shown.label->installEventFilter(&counter);
    shown.moveMouseIn();
    QTRY_COMPARE(shown.label->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(counter.paints, 1);
    shown.moveMouseOut();
    QTRY_COMPARE(shown.label->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(counter.paints, 2);
}

void tst_ClickableLabel::wholeDrawing_data()
{
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<bool>("isHovered");
    QTest::addColumn<bool>("hasIcon");
    QTest::addColumn<QSize>("size");
    const QSize wide(200, 60);
    QTest::newRow("at rest") << true << false << true << wide;
    QTest::newRow("disabled, at rest") << false << false << true << wide;
    QTest::newRow("under the mouse") << true << true << true << wide;
    QTest::newRow("without icon") << true << true << false << wide;
    QTest::newRow("disabled, under the mouse") << false << true << true << wide;
    QTest::newRow("too narrow for the caption") << true << true << true << QSize(110, 60);
    QTest::newRow("too low for the caption") << true << true << false << QSize(200, 12);
}

void tst_ClickableLabel::wholeDrawing()
{
    // Every pixel: highlight of a quarter's opacity and corners of 5, the icon over it, the caption.
    QFETCH(const bool, isEnabled);
    QFETCH(const bool, isHovered);
    QFETCH(const bool, hasIcon);
    QFETCH(const QSize, size);
    Shown shown(QStringLiteral("Caption of a label"));
    QPixmap icon = square(40, Qt::transparent);
    QPainter(&icon).fillRect(5, 5, 30, 20, QColor(200, 0, 0, 128));
    if (hasIcon) {
        shown.label->setPixmap(icon);
    }
    shown.label->textColor = QColor(QStringLiteral("#696969"));
    shown.label->setEnabled(isEnabled);
    shown.label->setMinimumSize(0, 0);
    shown.label->resize(size);
    QVERIFY(shown.show());
    if (isHovered) {
        QTest::mouseMove(shown.window.windowHandle(), QPoint(60, 56));
        QTRY_COMPARE(shown.label->cursor().shape(), Qt::PointingHandCursor);
    }

    QImage wanted(size, QImage::Format_RGB32);
    wanted.fill(Qt::white);
    QPainter painter(&wanted);
    QColor highlight(isEnabled ? QStringLiteral("#add8e6") : QStringLiteral("#cfcfc4"));
    highlight.setAlpha(isHovered ? 64 : 0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(highlight);
    painter.drawRoundedRect(QRect(QPoint(), size), 5, 5, Qt::AbsoluteSize);
    const int iconWidth = hasIcon ? 40 : 0;
    if (hasIcon) {
        painter.drawPixmap(QPointF(2, 2), icon);
    }
    painter.setFont(QFont());
    painter.setPen(QColor(QStringLiteral("#696969")));
    painter.drawText(QRect(iconWidth + 13, 2, size.width() - iconWidth - 15, size.height() - 4),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Caption of a label"));
    painter.end();
    QCOMPARE(render(shown.label), wanted);
}

void tst_ClickableLabel::noHighlightWithoutText()
{
    // An icon alone is not highlighted, though the pointer changes over it.
    Shown shown((QString()));
    shown.label->setPixmap(square(40, Qt::red));
    QVERIFY(shown.show());
    shown.moveMouseOut();
    const QImage before = render(shown.label);
    shown.moveMouseIn();
    QTRY_COMPARE(shown.label->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(render(shown.label), before);
}

void tst_ClickableLabel::pointerShape()
{
    // The pointer is a hand over the label, and an arrow again when it has left.
    Shown shown(caption());
    QVERIFY(shown.show());
    shown.moveMouseIn();
    QTRY_COMPARE(shown.label->cursor().shape(), Qt::PointingHandCursor);
    shown.moveMouseOut();
    QTRY_COMPARE(shown.label->cursor().shape(), Qt::ArrowCursor);
}

void tst_ClickableLabel::iconStandsTwoPixelsIn()
{
    // The icon is drawn in its own size, two pixels from the left and the top.
    Shown shown((QString()));
    shown.label->setPixmap(square(20, Qt::red));
    QVERIFY(shown.show());
    const QImage image = render(shown.label);
    QCOMPARE(inked(image, image.rect()), QRect(2, 2, 20, 20));
    QCOMPARE(image.pixelColor(2, 2), QColor(Qt::red));
}

void tst_ClickableLabel::captionPlace_data()
{
    QTest::addColumn<int>("icon");
    QTest::newRow("without icon") << 0;
    QTest::newRow("with icon") << 40;
}

void tst_ClickableLabel::captionPlace()
{
    // The caption begins 13 pixels right of the icon's width, in the middle of the height.
    QFETCH(int, icon);
    Shown shown(QStringLiteral("HHH"));
    if (icon > 0) {
        shown.label->setPixmap(square(icon, Qt::white));
    }
    QVERIFY(shown.show());
    QImage wanted(shown.label->size(), QImage::Format_RGB32);
    wanted.fill(Qt::white);
    QPainter painter(&wanted);
    painter.setFont(QFont());
    painter.drawText(QRect(icon + 13, 2, 200 - icon - 15, 56),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("HHH"));
    painter.end();
    const QImage image = render(shown.label);
    QVERIFY(!inked(wanted, wanted.rect()).isEmpty());
    QCOMPARE(inked(image, image.rect()), inked(wanted, wanted.rect()));
}

void tst_ClickableLabel::captionColor()
{
    // The caption is black as long as nobody gives it a colour.
    QFont large;
    large.setPixelSize(50);
    Shown shown(QStringLiteral("\u2588\u2588"));
    shown.label->setTextFont(large);
    QVERIFY(!shown.label->textColor.isValid());
    QVERIFY(shown.show());
    QCOMPARE(at(shown.label, 40, 30), QColor(Qt::black));
    shown.label->textColor = QColor(QStringLiteral("#696969"));
    QCOMPARE(at(shown.label, 40, 30), QColor(QStringLiteral("#696969")));
}

void tst_ClickableLabel::widgetFontLeavesTheCaption()
{
    // The widget's own font changes neither the caption nor the size.
    Shown shown(caption());
    QVERIFY(shown.show());
    const QImage before = render(shown.label);
    const QSize size = shown.label->minimumSize();
    QFont bold;
    bold.setWeight(QFont::Bold);
    bold.setPixelSize(30);
    shown.label->setFont(bold);
    QCOMPARE(render(shown.label), before);
    QCOMPARE(shown.label->minimumSize(), size);
}

void tst_ClickableLabel::textFontDrawsTheCaption()
{
    // The text font changes the caption.
    Shown shown(caption());
    QVERIFY(shown.show());
    const QRect before = inked(render(shown.label), shown.label->rect());
    QFont large;
    large.setPixelSize(30);
    shown.label->setTextFont(large);
    QVERIFY(inked(render(shown.label), shown.label->rect()).height() > before.height());
}

void tst_ClickableLabel::clickedIsTheOnlySignal()
{
    // The class adds one signal to those of a widget, and no slot.
    const QMetaObject &meta = ClickableLabel::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("clicked()"));
}

void tst_ClickableLabel::accessibleButton()
{
    // A screen reader meets a button with the caption as its name, and can press it.
    ClickableLabel label(caption());
    const QSignalSpy clicks(&label, SIGNAL(clicked()));
    QAccessibleInterface *const button = QAccessible::queryAccessibleInterface(&label);
    QVERIFY(button != nullptr);
    QCOMPARE(button->role(), QAccessible::Button);
    QCOMPARE(button->text(QAccessible::Name), caption());
    label.setText(QStringLiteral("Other"));
    QCOMPARE(button->text(QAccessible::Name), QStringLiteral("Other"));
    const QString press = QAccessibleActionInterface::pressAction();
    QVERIFY(button->actionInterface()->actionNames().contains(press));
    button->actionInterface()->doAction(press);
    QCOMPARE(clicks.size(), 1);
    label.setEnabled(false);
    QVERIFY(!button->actionInterface()->actionNames().contains(press));
    button->actionInterface()->doAction(press);
    QCOMPARE(clicks.size(), 1);
}

TWINSIFT_TEST_MAIN(tst_ClickableLabel)
#include "tst_ClickableLabel.moc"
