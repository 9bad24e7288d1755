// SPDX-License-Identifier: MIT
#pragma once

/** What a file system is made for, as far as a scan treats it in its own way. */
enum class FileSystemKind {
    Storage,
    /** Files on another machine or served by a program. */
    Remote,
    /** A view of the system itself (proc, sysfs and the like): no files that anybody has stored. */
    Pseudo
};
