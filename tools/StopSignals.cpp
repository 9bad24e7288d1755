// SPDX-License-Identifier: MIT
#include "tools/StopSignals.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr std::array<int, 3> numbers = {SIGINT, SIGTERM, SIGHUP};

// All that a handler may touch.
std::atomic<int> firstNumber = {0};
static_assert(std::atomic<int>::is_always_lock_free);
volatile std::sig_atomic_t isHandled[numbers.size()] = {};
int pipeEnds[2] = {-1, -1};

void giveBack()
{
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (isHandled[i] != 0) {
            std::signal(numbers[i], SIG_DFL);
        }
    }
}
} // namespace

extern "C" {
static void handleStopSignal(int number)
{
    int none = 0;
    if (!firstNumber.compare_exchange_strong(none, number)) {
        // Another thread is in here still for the first one, and this is the second.
        std::signal(number, SIG_DFL);
        ::raise(number);
        return;
    }
    const int error = errno;
    giveBack();
    // Nothing is lost if it fails: the number is kept.
    const ssize_t written = ::write(pipeEnds[1], "", 1);
    static_cast<void>(written);
    errno = error;
}
}

StopSignals::StopSignals(QObject *parent)
    : QObject(parent)
{
    if (::pipe(pipeEnds) != 0) {
        return;
    }
    for (const int end : pipeEnds) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    auto *const notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        emit caught();
    });
    struct sigaction action = {};
    action.sa_handler = handleStopSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : numbers) {
        sigaddset(&action.sa_mask, number);
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        struct sigaction before = {};
        ::sigaction(numbers[i], nullptr, &before);
        isHandled[i] = before.sa_handler == SIG_DFL ? 1 : 0;
        if (isHandled[i] != 0) {
            ::sigaction(numbers[i], &action, nullptr);
        }
    }
}

StopSignals::~StopSignals()
{
    giveBack();
    for (int &end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

int StopSignals::number()
{
    return firstNumber;
}
