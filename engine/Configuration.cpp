// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"

Configuration *Configuration::instance()
{
    static auto *const configuration = new Configuration;
    return configuration;
}

#include "moc_Configuration.cpp" // NOLINT(bugprone-suspicious-include)
