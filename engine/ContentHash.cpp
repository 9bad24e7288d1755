// SPDX-License-Identifier: MIT
#include "engine/ContentHash.h"

#include <QRandomGenerator>

#include <xxhash.h>

namespace
{
XXH64_hash_t seed()
{
    static const XXH64_hash_t value = QRandomGenerator::system()->generate64();
    return value;
}
} // namespace

ContentHash::ContentHash()
    : state(XXH3_createState())
{
    Q_CHECK_PTR(state);
    XXH3_64bits_reset_withSeed(state, seed());
}

ContentHash::~ContentHash()
{
    XXH3_freeState(state);
}

void ContentHash::add(const char *data, qint64 bytes)
{
    XXH3_64bits_update(state, data, static_cast<size_t>(bytes));
}

quint64 ContentHash::result() const
{
    return XXH3_64bits_digest(state);
}

quint64 ContentHash::of(const char *data, qint64 bytes)
{
    return XXH3_64bits_withSeed(data, static_cast<size_t>(bytes), seed());
}
