// SPDX-License-Identifier: MIT
#include "ui/QtCompat.h"

#include <QFont>

void QtCompat::closeFont(QFont *font)
{
    font->resolve(QFont::AllPropertiesResolved);
}

void QtCompat::useWholeRatios() {}

void QtCompat::liftPictureLimit() {}
