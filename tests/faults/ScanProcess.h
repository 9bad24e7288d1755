// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/** Runs twinsift-scan with --print0 and waits for its end. */
class ScanProcess final
{
public:
    /** The environment is that of the test with these variables besides. */
    ScanProcess(const QStringList &arguments, const QProcessEnvironment &variables);

    /** The status with which it has ended; -1 when it crashed, did not start, or did not end. */
    int status = -1;
    /** Paths as they came, byte for byte. */
    QList<QByteArrayList> groups;
    /** Lines of standard error. */
    QByteArrayList messages;
};
