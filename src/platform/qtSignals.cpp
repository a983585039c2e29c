#include "platform/qtSignals.h"

#include "util/log.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QWidget>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {
// Written by the signal handler, which may use nothing but async-signal-safe calls.
int signalPipe[2] = {-1, -1};

void onQuitSignal(int signalNumber) {
    int savedErrno = errno;
    char byte = static_cast<char>(signalNumber);
    [[maybe_unused]] ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}
} // namespace

void closeWindowOnQuitSignals(QWidget* window) {
    if (signalPipe[0] < 0 && ::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        logErr("Could not watch for quit signals: %s\n", std::strerror(errno));
        return;
    }
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [window] {
        char byte = 0;
        while (::read(signalPipe[0], &byte, 1) == 1) {
        }
        window->close();
    });
    struct sigaction action = {};
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signalNumber, &action, nullptr);
}

void closeWindowOnSessionEnd(QWidget* window) {
#ifndef QT_NO_SESSIONMANAGER
    // The session manager asks every client to save before it ends the session; the player's
    // saving is its shutdown, which the close box runs once.
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, window,
                     [window](QSessionManager&) { window->close(); });
#else
    (void)window;
#endif
}
