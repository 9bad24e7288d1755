// SPDX-License-Identifier: MIT
#include "engine/LocalText.h"

// Names are UTF-8 in every locale.
void LocalText::useUtf8InPlainLocale() {}
