// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

struct XXH3_state_s;

/**
 * A quick hash of 64 bits that tells most contents apart, and proves none equal.
 *
 * It is keyed with a value that each run of the program draws anew, so nobody can prepare contents
 * that agree in it, and a result means nothing to another run.
 */
class ContentHash final
{
    Q_DISABLE_COPY(ContentHash)

public:
    ContentHash();
    ~ContentHash();

    void add(const char *data, qint64 bytes);
    quint64 result() const;

    /** The same for bytes that lie in one piece. */
    static quint64 of(const char *data, qint64 bytes);

private:
    XXH3_state_s *state;
};
