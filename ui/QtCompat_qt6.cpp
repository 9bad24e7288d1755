// SPDX-License-Identifier: MIT
#include "ui/QtCompat.h"

#include <QFont>
#include <QGuiApplication>
#include <QImageReader>

void QtCompat::closeFont(QFont *font)
{
    font->setResolveMask(QFont::AllPropertiesResolved);
}

void QtCompat::useWholeRatios()
{
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::Floor);
}

void QtCompat::liftPictureLimit()
{
    static const bool isLifted = (QImageReader::setAllocationLimit(0), true);
    Q_UNUSED(isLifted)
}
