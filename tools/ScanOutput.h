// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/**
 * Writes bytes to an open file descriptor, whole and in order, waiting for a slow reader.
 *
 * The descriptor is not owned. Not written out before flush(), or before some of it has gathered.
 */
class ScanOutput final
{
public:
    explicit ScanOutput(int fileDescriptor);

    void write(const QByteArray &bytes);
    /** False when anything written so far is lost; errno then holds why. */
    bool flush();

private:
    int descriptor;
    int error = 0;
    QByteArray waiting;
};
