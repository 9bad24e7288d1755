// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QString>

#ifdef Q_OS_LINUX
#include <sys/inotify.h>
#endif
#include <unistd.h>

/** Sees whether a file is opened by anybody. Only Linux tells; elsewhere it is never seen. */
class OpenWatch final
{
    Q_DISABLE_COPY(OpenWatch)

public:
    explicit OpenWatch(const QString &path)
    {
#ifdef Q_OS_LINUX
        watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (::inotify_add_watch(watch, QFile::encodeName(path).constData(), IN_OPEN) < 0) {
            qFatal("cannot watch %s", qPrintable(path));
        }
#else
        Q_UNUSED(path)
#endif
    }
    ~OpenWatch()
    {
        if (watch >= 0) {
            ::close(watch);
        }
    }
    /** Since the last call. */
    bool wasOpened() const
    {
#ifdef Q_OS_LINUX
        inotify_event event = {};
        return ::read(watch, &event, sizeof event) > 0;
#else
        return false;
#endif
    }

private:
    int watch = -1;
};
