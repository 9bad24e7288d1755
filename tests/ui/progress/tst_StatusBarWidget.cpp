// SPDX-License-Identifier: MIT
#include "app/Product.h"
#include "tests/support/TestCase.h"
#include "tests/support/UrlCatcher.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/progress/StatusBarWidget.h"

#include <QLabel>

namespace
{
QLabel *labelOf(const StatusBarWidget &bar, const char *name)
{
    return bar.findChild<QLabel *>(QLatin1String(name));
}

ClickableLabel *iconOf(const StatusBarWidget &bar, const char *name)
{
    for (ClickableLabel *icon : bar.findChildren<ClickableLabel *>()) {
        if (icon->accessibleName() == QLatin1String(name)) {
            return icon;
        }
    }
    return nullptr;
}
} // namespace

class tst_StatusBarWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void order();
    void icons();
    void iconsOpenTheirPages();
    void slotsOfTheMetaObject();
    void messages();
    void linkInMessageOpens();
    void focusGoesThroughTheIcons();
};

void tst_StatusBarWidget::order()
{
    // From the left: Facebook, Twitter, the left message; the right message at the right edge.
    StatusBarWidget bar;
    bar.showLeftMessage(QStringLiteral("left"));
    bar.showRightMessage(QStringLiteral("right"));
    bar.resize(800, 60);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    const QRect facebook = iconOf(bar, "Facebook")->geometry();
    const QRect twitter = iconOf(bar, "Twitter")->geometry();
    const QRect left = labelOf(bar, "leftLabel")->geometry();
    const QRect right = labelOf(bar, "rightLabel")->geometry();
    QVERIFY(facebook.right() < twitter.left());
    QVERIFY(twitter.right() < left.left());
    QVERIFY(left.left() < 200);
    QVERIFY(right.left() - left.right() > 300);
    QVERIFY(right.right() > 780);
}

void tst_StatusBarWidget::icons()
{
    // Both icons are 40 pixels high, and their labels 4 more.
    const StatusBarWidget bar;
    QCOMPARE(bar.findChildren<ClickableLabel *>().size(), 2);
    QCOMPARE(iconOf(bar, "Facebook")->minimumSize(), QSize(44, 44));
    QCOMPARE(iconOf(bar, "Twitter")->minimumSize(), QSize(44, 44));
}

void tst_StatusBarWidget::iconsOpenTheirPages()
{
    // Each icon opens its own page, once a press.
    const StatusBarWidget bar;
    const UrlCatcher catcher;
    const QUrl twitter(QString::fromUtf8(Product::twitterPage));
    const QUrl facebook(QString::fromUtf8(Product::facebookPage));
    QVERIFY(twitter != facebook);
    QTest::mouseClick(iconOf(bar, "Twitter"), Qt::LeftButton);
    QCOMPARE(catcher.urls(), QList<QUrl>({twitter}));
    QTest::mouseClick(iconOf(bar, "Facebook"), Qt::LeftButton);
    QCOMPARE(catcher.urls(), QList<QUrl>({twitter, facebook}));
}

void tst_StatusBarWidget::slotsOfTheMetaObject()
{
    // The two slots are declared in this order.
    const QMetaObject &meta = StatusBarWidget::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("openTwitter()"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(), QByteArray("openFacebook()"));
}

void tst_StatusBarWidget::messages()
{
    // A message goes to its own label, both labels show rich text, aligned to their side.
    StatusBarWidget bar;
    QLabel *const left = labelOf(bar, "leftLabel");
    QLabel *const right = labelOf(bar, "rightLabel");
    QCOMPARE(left->text(), QString());
    QCOMPARE(right->text(), QString());
    bar.showLeftMessage(QStringLiteral("<b>one</b>"));
    QCOMPARE(left->text(), QStringLiteral("<b>one</b>"));
    QCOMPARE(right->text(), QString());
    bar.showRightMessage(QStringLiteral("two"));
    QCOMPARE(left->text(), QStringLiteral("<b>one</b>"));
    QCOMPARE(right->text(), QStringLiteral("two"));
    QCOMPARE(left->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(Qt::AlignLeft));
    QCOMPARE(right->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(Qt::AlignRight));
    QCOMPARE(left->textFormat(), Qt::RichText);
    QCOMPARE(right->textFormat(), Qt::RichText);
}

void tst_StatusBarWidget::linkInMessageOpens()
{
    // A click on a link in either message opens it on the desktop.
    StatusBarWidget bar;
    const UrlCatcher catcher;
    bar.showLeftMessage(QStringLiteral("<a href=\"https://left.example/\">left</a>"));
    bar.showRightMessage(QStringLiteral("<a href=\"https://right.example/\">right</a>"));
    bar.resize(800, 60);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QTest::mouseClick(labelOf(bar, "leftLabel"), Qt::LeftButton);
    QTest::mouseClick(labelOf(bar, "rightLabel"), Qt::LeftButton);
    QCOMPARE(catcher.urls(),
             QList<QUrl>({QUrl(QStringLiteral("https://left.example/")),
                          QUrl(QStringLiteral("https://right.example/"))}));
}

void tst_StatusBarWidget::focusGoesThroughTheIcons()
{
    // Tab goes from icon to icon in their order, and Space opens the page.
    StatusBarWidget bar;
    const UrlCatcher catcher;
    bar.show();
    bar.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bar));
    iconOf(bar, "Facebook")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(&bar, Qt::Key_Tab);
    QCOMPARE(bar.focusWidget(), iconOf(bar, "Twitter"));
    QTest::keyClick(bar.focusWidget(), Qt::Key_Space);
    QCOMPARE(catcher.urls(), QList<QUrl>({QUrl(QString::fromUtf8(Product::twitterPage))}));
    QTest::keyClick(&bar, Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(bar.focusWidget(), iconOf(bar, "Facebook"));
}

TWINSIFT_TEST_MAIN(tst_StatusBarWidget)
#include "tst_StatusBarWidget.moc"
