// SPDX-License-Identifier: MIT
#include "engine/LocalText.h"

#include <QTextCodec>

#include <clocale>
#include <cstring>

void LocalText::useUtf8InPlainLocale()
{
    const char *const locale = std::setlocale(LC_CTYPE, nullptr);
    if (std::strcmp(locale, "C") == 0 || std::strcmp(locale, "POSIX") == 0) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    }
}
