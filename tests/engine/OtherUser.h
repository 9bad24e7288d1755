// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

/**
 * Acts as a user without rights while it lives: the super-user can read every file. The folder, and
 * the two above it, are opened to that user first. Does nothing in a process of a plain user.
 */
class OtherUser final
{
public:
    explicit OtherUser(const QString &folder)
    {
        if (::geteuid() != 0) {
            return;
        }
        for (const char *up : {"", "/..", "/../.."}) {
            ::chmod((folder + QLatin1String(up)).toLocal8Bit().constData(), 0755);
        }
        isOther = ::seteuid(nobody) == 0;
    }

    ~OtherUser()
    {
        if (isOther && ::seteuid(0) != 0) {
            qFatal("cannot become the super-user again");
        }
    }

    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;

    static bool hasRights() { return ::geteuid() == 0; }

private:
    static constexpr uid_t nobody = 65534;

    bool isOther = false;
};
