// SPDX-License-Identifier: MIT
#include "ui/progress/StatusBarWidget.h"

#include "app/Product.h"
#include "ui/Picture.h"
#include "ui/progress/ClickableLabel.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QUrl>

namespace
{
constexpr int iconHeight = 40;
} // namespace

StatusBarWidget::StatusBarWidget(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto *const layout = new QHBoxLayout(this);
    ClickableLabel *const facebook =
        createIcon(QStringLiteral(":/content/facebook.png"), QStringLiteral("Facebook"));
    ClickableLabel *const twitter =
        createIcon(QStringLiteral(":/content/twitter.png"), QStringLiteral("Twitter"));
    leftLabel = createMessageLabel(Qt::AlignLeft);
    rightLabel = createMessageLabel(Qt::AlignRight);
    leftLabel->setObjectName(QStringLiteral("leftLabel"));
    rightLabel->setObjectName(QStringLiteral("rightLabel"));
    connect(twitter, SIGNAL(clicked()), this, SLOT(openTwitter()));
    connect(facebook, SIGNAL(clicked()), this, SLOT(openFacebook()));

    layout->addWidget(facebook);
    layout->addWidget(twitter);
    layout->addWidget(leftLabel);
    layout->addStretch();
    layout->addWidget(rightLabel);
}

void StatusBarWidget::showLeftMessage(const QString &message)
{
    leftLabel->setText(message);
}

void StatusBarWidget::showRightMessage(const QString &message)
{
    rightLabel->setText(message);
}

void StatusBarWidget::openTwitter()
{
    QDesktopServices::openUrl(QUrl(QString::fromUtf8(Product::twitterPage)));
}

void StatusBarWidget::openFacebook()
{
    QDesktopServices::openUrl(QUrl(QString::fromUtf8(Product::facebookPage)));
}

QLabel *StatusBarWidget::createMessageLabel(Qt::Alignment alignment)
{
    auto *const label = new QLabel(this);
    label->setTextFormat(Qt::RichText);
    label->setOpenExternalLinks(true);
    label->setAlignment(alignment | Qt::AlignVCenter);
    return label;
}

ClickableLabel *StatusBarWidget::createIcon(const QString &path, const QString &name)
{
    auto *const icon = new ClickableLabel(QString(), this);
    icon->setPixmap(Picture::scaledToHeight(path, iconHeight, devicePixelRatioF()));
    icon->setAccessibleName(name);
    return icon;
}
