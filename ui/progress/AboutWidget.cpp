// SPDX-License-Identifier: MIT
#include "ui/progress/AboutWidget.h"

#include "app/Product.h"
#include "ui/Picture.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace
{
constexpr int boxWidth = 480;
constexpr int boxHeight = 320;
constexpr int footerMargin = 12;

QString anchor(const QString &address, const QString &text)
{
    return QStringLiteral("<a href=\"%1\">%2</a>").arg(address, text);
}

QLabel *createLinkLabel(QWidget *parent)
{
    auto *const label = new QLabel(parent);
    label->setTextFormat(Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setOpenExternalLinks(true);
    return label;
}
} // namespace

AboutWidget::AboutWidget(QWidget *parent)
    : QWidget(parent, Qt::Dialog)
{
    setFixedSize(boxWidth, boxHeight);
    setWindowTitle(QStringLiteral("About TwinSift"));
    auto *const layout = new QVBoxLayout(this);
    // The logo is as wide as the box.
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(createHeader());
    layout->addWidget(createText());
    layout->addStretch();
    layout->addStretch();
    layout->addLayout(createFooter());
}

void AboutWidget::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

QHBoxLayout *AboutWidget::createHeader()
{
    auto *const logo = new QLabel(this);
    logo->setObjectName(QStringLiteral("logoLabel"));
    logo->setPixmap(Picture::scaledToWidth(QStringLiteral(":/content/logo.png"),
                                           boxWidth,
                                           devicePixelRatioF()));
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(logo);
    row->addStretch();
    return row;
}

QLabel *AboutWidget::createText()
{
    const QString mailto = QString::fromUtf8(Product::supportMail);
    const QString address = mailto.mid(mailto.indexOf(QLatin1Char(':')) + 1);
    const QString text = QStringLiteral("<b>Corvalin TwinSift</b> %1<br>"
                                        "Developed by <b>Corvalin Company</b><br>"
                                        "Support E-Mail %2<br>")
                             .arg(QString::fromUtf8(Product::version), anchor(mailto, address));
    QLabel *const label = createLinkLabel(this);
    label->setObjectName(QStringLiteral("textLabel"));
    label->setAlignment(Qt::AlignCenter);
    label->setText(text);
    return label;
}

QHBoxLayout *AboutWidget::createFooter()
{
    QLabel *const homepage = createLinkLabel(this);
    homepage->setObjectName(QStringLiteral("homepageLabel"));
    homepage->setText(anchor(QString::fromUtf8(Product::homepage),
                             QString::fromUtf8(Product::homepageShortForm)));
    auto *const rights = new QLabel(QStringLiteral("\u00a9 2021 Corvalin Company"), this);
    rights->setObjectName(QStringLiteral("rightsLabel"));
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(footerMargin, 0, footerMargin, footerMargin);
    row->addWidget(homepage);
    row->addStretch();
    row->addWidget(rights);
    return row;
}
