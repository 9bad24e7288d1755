// SPDX-License-Identifier: MIT
#include "engine/FileHead.h"

#include <algorithm>

FileHead FileHead::read(const QString &path, qint64 bytes, bool staysOpen)
{
    FileHead head;
    RegularFile file;
    if (!file.open(path)) {
        head.error = file.errorString();
        return head;
    }
    head.size = file.size();
    head.modified = file.modified();
    head.changed = file.changed();
    const qint64 wanted = std::min(head.size, bytes);
    // One byte more is asked for of a file that ends there, as some file systems announce too few.
    const qint64 asked = wanted < head.size ? wanted : wanted + 1;
    head.bytes.resize(static_cast<int>(asked));
    const qint64 done = file.read(head.bytes.data(), std::max(wanted, qint64(1)), asked);
    if (done < 0) {
        head.error = file.errorString();
        return head;
    }
    head.outcome = done == wanted ? Outcome::Read : Outcome::Odd;
    head.bytes.resize(static_cast<int>(wanted));
    if (staysOpen && wanted < head.size) {
        head.file = std::move(file);
    }
    return head;
}
