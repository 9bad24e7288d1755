// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <limits>

/** How the folders of a scan are walked, a plain value. As it is made, it is the way of the window. */
struct WalkOptions {
    /** Those to folders; a file that is a link is never taken. */
    bool followsLinks = true;
    /** Takes hidden files, and walks hidden folders. */
    bool takesHidden = false;
    /** Walks no folder of another file system than that of the folder it began with. */
    bool staysOnFileSystem = false;
    // Bytes, beside the limits of the profile; both include their own value.
    qint64 minBytes = 0;
    qint64 maxBytes = std::numeric_limits<qint64>::max();
};
