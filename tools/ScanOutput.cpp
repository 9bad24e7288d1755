// SPDX-License-Identifier: MIT
#include "tools/ScanOutput.h"

#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace
{
constexpr int maxWaitingBytes = 64 * 1024;
}

ScanOutput::ScanOutput(int fileDescriptor)
    : descriptor(fileDescriptor)
{
}

void ScanOutput::write(const QByteArray &bytes)
{
    waiting += bytes;
    if (waiting.size() >= maxWaitingBytes) {
        flush();
    }
}

bool ScanOutput::flush()
{
    int done = 0;
    while (error == 0 && done < waiting.size()) {
        const ssize_t bytes = ::write(descriptor,
                                      waiting.constData() + done,
                                      static_cast<std::size_t>(waiting.size() - done));
        if (bytes >= 0) {
            done += static_cast<int>(bytes);
        } else if (errno == EAGAIN) {
            // Whoever made the descriptor may have set it to fail instead of to wait.
            pollfd writable = {descriptor, POLLOUT, 0};
            ::poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            error = errno;
        }
    }
    waiting.clear();
    errno = error;
    return error == 0;
}
