// SPDX-License-Identifier: MIT
#include "app/Product.h"
#include "tests/support/TestCase.h"
#include "tests/support/UrlCatcher.h"
#include "ui/progress/AboutWidget.h"

#include <QLabel>

namespace
{
QLabel *labelOf(const AboutWidget &box, const char *name)
{
    return box.findChild<QLabel *>(QLatin1String(name));
}

QRect placeOf(const AboutWidget &box, const char *name)
{
    const QLabel *const label = labelOf(box, name);
    return {label->mapTo(&box, QPoint()), label->size()};
}
} // namespace

class tst_AboutWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void window();
    void text();
    void footer();
    void order();
    void logoFillsTheWidth();
    void linksOpenOnTheDesktop();
    void escapeCloses();
};

void tst_AboutWidget::window()
{
    // The box is a dialog of a fixed size that does not stop the rest of the program.
    const AboutWidget box;
    QCOMPARE(box.minimumSize(), QSize(480, 320));
    QCOMPARE(box.maximumSize(), QSize(480, 320));
    QCOMPARE(box.windowType(), Qt::Dialog);
    QCOMPARE(box.windowModality(), Qt::NonModal);
    QVERIFY(!box.testAttribute(Qt::WA_DeleteOnClose));
}

void tst_AboutWidget::text()
{
    // The text names the program, its version, its maker and where help is found.
    const AboutWidget box;
    const QLabel *const label = labelOf(box, "textLabel");
    const QString mailto = QString::fromUtf8(Product::supportMail);
    QVERIFY(mailto.startsWith(QLatin1String("mailto:")));
    QCOMPARE(label->text(),
             QStringLiteral("<b>Corvalin TwinSift</b> 1.2.3<br>"
                            "Developed by <b>Corvalin Company</b><br>"
                            "Support E-Mail <a href=\"%1\">%2</a><br>")
                 .arg(mailto, mailto.mid(7)));
    QCOMPARE(label->alignment(), Qt::Alignment(Qt::AlignCenter));
    QVERIFY(label->openExternalLinks());
}

void tst_AboutWidget::footer()
{
    // The footer holds the homepage by its short name and the rights notice.
    const AboutWidget box;
    const QLabel *const homepage = labelOf(box, "homepageLabel");
    QCOMPARE(homepage->text(),
             QStringLiteral("<a href=\"%1\">%2</a>")
                 .arg(QString::fromUtf8(Product::homepage),
                      QString::fromUtf8(Product::homepageShortForm)));
    QVERIFY(homepage->openExternalLinks());
    QCOMPARE(labelOf(box, "rightsLabel")->text(), QStringLiteral("\u00a9 2021 Corvalin Company"));
}

void tst_AboutWidget::order()
{
    // From the top: logo, text, and at the bottom the homepage at the left, the rights opposite.
    AboutWidget box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    const QRect logo = placeOf(box, "logoLabel");
    const QRect text = placeOf(box, "textLabel");
    const QRect homepage = placeOf(box, "homepageLabel");
    const QRect rights = placeOf(box, "rightsLabel");
    QVERIFY(logo.bottom() < text.top());
    QVERIFY(text.bottom() < homepage.top());
    QVERIFY(homepage.left() < 30);
    QVERIFY(homepage.right() < rights.left());
    QVERIFY(rights.right() > 450);
    QVERIFY(rights.width() >= labelOf(box, "rightsLabel")->sizeHint().width());
    QVERIFY(homepage.bottom() > 320 - 30);
    QVERIFY(homepage.bottom() < 320);
    QVERIFY(rights.right() < 480);
}

void tst_AboutWidget::logoFillsTheWidth()
{
    // The logo is as wide as the box and shown whole.
    AboutWidget box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QCOMPARE(labelOf(box, "logoLabel")->sizeHint(), QSize(480, 120));
    QCOMPARE(placeOf(box, "logoLabel"), QRect(0, 0, 480, 120));
}

void tst_AboutWidget::linksOpenOnTheDesktop()
{
    // The homepage opens by mouse and by keys.
    AboutWidget box;
    const UrlCatcher catcher;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QLabel *const homepage = labelOf(box, "homepageLabel");
    QTest::mouseClick(homepage, Qt::LeftButton, Qt::NoModifier, homepage->rect().center());
    const QUrl page(QString::fromUtf8(Product::homepage));
    QCOMPARE(catcher.urls(), QList<QUrl>({page}));
    QVERIFY(homepage->focusPolicy() & Qt::TabFocus);
    homepage->setFocus(Qt::TabFocusReason);
    QTest::keyClick(homepage, Qt::Key_Return);
    QCOMPARE(catcher.urls(), QList<QUrl>({page, page}));
}

void tst_AboutWidget::escapeCloses()
{
    // Escape closes the box, another key does not.
    AboutWidget box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QTest::keyClick(&box, Qt::Key_A);
    QVERIFY(box.isVisible());
    QTest::keyClick(&box, Qt::Key_Escape);
    QVERIFY(!box.isVisible());
}

TWINSIFT_TEST_MAIN(tst_AboutWidget)
#include "tst_AboutWidget.moc"
