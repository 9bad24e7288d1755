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
    // One byte is asked for of a file that announces none.
    const qint64 wanted = std::min(head.size, bytes);
    head.bytes.resize(static_cast<int>(std::max(wanted, qint64(1))));
    const qint64 done = file.read(head.bytes.data(), head.size == 0 ? 1 : wanted);
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
