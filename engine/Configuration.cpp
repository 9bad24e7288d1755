// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"

Configuration *Configuration::instance()
{
    static auto *const configuration = new Configuration;
    return configuration;
}
