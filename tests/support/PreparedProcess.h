// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

/** A process that does something of its own between its fork and its program; each generation of the
 * toolkit has another way to say so. */
class PreparedProcess : public QProcess
{
public:
#if QT_VERSION_MAJOR < 6
    PreparedProcess() = default;

protected:
    // clang-format off
    void setupChildProcess() override { prepareChild(); }
    // clang-format on
#else
    PreparedProcess()
    {
        setChildProcessModifier([this] { prepareChild(); });
    }

protected:
#endif
    /** Runs in the child, and may call only what is safe in a signal handler. */
    virtual void prepareChild() = 0;
};
