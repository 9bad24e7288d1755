// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"

Configuration *Configuration::instance()
{
    static Configuration *const configuration = new Configuration;
    return configuration;
}
