#include "appdelegate.h"

#include "appcommands.h"
#include "datastore.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler may only write to a pipe; the event loop reads the other end.
int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

} // namespace

AppDelegate::AppDelegate(QGuiApplication *application)
    : QObject(application)
{
    QGuiApplication::setQuitOnLastWindowClosed(true);
    connect(application, &QCoreApplication::aboutToQuit, this, &AppDelegate::saveStore);
    // Logging out may end the process without aboutToQuit: save when the session asks.
    connect(application, &QGuiApplication::commitDataRequest, this, [](QSessionManager &) { saveStore(); });
    installSignalHandlers();
}

AppDelegate::~AppDelegate()
{
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, SIG_DFL);
}

void AppDelegate::saveStore()
{
    DataStore *store = DataStore::shared();
    store->saveData();
    store->flush();
}

void AppDelegate::installSignalHandlers()
{
    if (signalPipe[0] < 0 && ::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_signalNotifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_signalNotifier, &QSocketNotifier::activated, this, [] {
        char buffer[16];
        while (::read(signalPipe[0], buffer, sizeof buffer) > 0) {
        }
        AppCommands::quit(); // aboutToQuit saves
    });
    struct sigaction action
    {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}
