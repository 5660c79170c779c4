// SPDX-License-Identifier: Apache-2.0
#include "host/commands/InterruptWatch.h"

#include <QSocketNotifier>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace Velmar::Host {

namespace {

constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};

// A signal handler may touch nothing else.
int pipeEnds[2] = {-1, -1};
volatile std::sig_atomic_t signalCount = 0;

timespec firstSignal {};

/// A second signal ends the program at once. One that comes with the first is the same one: some
/// programs signal their child and then its group.
bool isRepetition()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto ms
        = (now.tv_sec - firstSignal.tv_sec) * 1000 + (now.tv_nsec - firstSignal.tv_nsec) / 1000000;
    return ms < 1000;
}

void onSignal(int)
{
    if (signalCount != 0) {
        if (!isRepetition())
            _exit(InterruptWatch::ExitStatus);
        return;
    }
    clock_gettime(CLOCK_MONOTONIC, &firstSignal);
    signalCount = 1;
    const char byte = 1;
    // Full or closed, nothing can be done about it here.
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1);
}

void installHandler(void (*handler)(int))
{
    struct sigaction action
    {
    };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : Signals)
        sigaction(signal, &action, nullptr);
}

} // namespace

InterruptWatch::InterruptWatch(QObject *parent)
    : QObject(parent)
{
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // signals then end the process, as they do by default
    m_notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &InterruptWatch::onReadable);
    signalCount = 0;
    installHandler(onSignal);
}

InterruptWatch::~InterruptWatch()
{
    if (!m_notifier)
        return;
    installHandler(SIG_DFL);
    delete m_notifier;
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

bool InterruptWatch::isInterrupted() const
{
    return m_interrupted;
}

void InterruptWatch::onReadable()
{
    char byte = 0;
    if (read(pipeEnds[0], &byte, 1) != 1)
        return;
    m_interrupted = true;
    Q_EMIT interrupted();
}

} // namespace Velmar::Host
