// SPDX-License-Identifier: MIT
#include "ui/LightPalette.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>

#include <cmath>
#include <memory>
#include <optional>

namespace
{
constexpr double enoughContrast = 4.5;
// Styles paint a selection and a progress bar as a gradient, lighter at one end.
constexpr double contrastOnGradients = 6.5;

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

// Darkens the colour of a role until it can be told from its ground.
void separate(QPalette *palette,
              QPalette::ColorGroup group,
              QPalette::ColorRole role,
              QPalette::ColorRole ground,
              double wanted = enoughContrast)
{
    QColor color = palette->color(group, role);
    const QColor behind = palette->color(group, ground);
    while (LightPalette::contrast(color, behind) < wanted && color.value() > 0) {
        color = color.darker(110);
    }
    palette->setColor(group, role, color);
}

bool isLight(const QPalette &palette)
{
    return luminance(palette.color(QPalette::Window)) > 0.5
        && luminance(palette.color(QPalette::Base)) > 0.5
        && luminance(palette.color(QPalette::Button)) > 0.5;
}

QString lightStyle()
{
    return QStringLiteral("Fusion");
}

QPalette lightBase(const QStyle *style)
{
    const QPalette own = style->standardPalette();
    if (isLight(own)) {
        return own;
    }
    return std::unique_ptr<QStyle>(QStyleFactory::create(lightStyle()))->standardPalette();
}
} // namespace

double LightPalette::contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::fmax(a, b) + 0.05) / (std::fmin(a, b) + 0.05);
}

QPalette LightPalette::make(const QStyle *style)
{
    const QPalette base = lightBase(style);
    QPalette palette;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (int i = 0; i < QPalette::NColorRoles; ++i) {
            const auto role = static_cast<QPalette::ColorRole>(i);
            palette.setBrush(group, role, base.brush(group, role));
        }
        palette.setBrush(group, QPalette::WindowText, Qt::black);
        palette.setBrush(group, QPalette::Text, Qt::black);
        palette.setColor(group, QPalette::HighlightedText, Qt::white);
        // A darker ground under white text, darker texts on a light ground.
        separate(&palette,
                 group,
                 QPalette::Highlight,
                 QPalette::HighlightedText,
                 contrastOnGradients);
        separate(&palette, group, QPalette::ButtonText, QPalette::Button);
        separate(&palette, group, QPalette::ToolTipText, QPalette::ToolTipBase);
        separate(&palette, group, QPalette::PlaceholderText, QPalette::Base);
        separate(&palette, group, QPalette::Link, QPalette::Window);
        separate(&palette, group, QPalette::LinkVisited, QPalette::Window);
    }
    return palette;
}

void LightPalette::install()
{
    // As the toolkit gives it back: a style may have added something to it.
    static std::optional<QPalette> installed;
    if (installed && QGuiApplication::palette() == *installed) {
        return;
    }
    if (!isLight(QApplication::style()->standardPalette())) {
        QApplication::setStyle(lightStyle());
    }
    const QPalette palette = make(QApplication::style());
    QGuiApplication::setPalette(palette);
    QToolTip::setPalette(palette);
    installed = QGuiApplication::palette();
}
