#include "appdelegate.h"

#include "appcommands.h"
#include "datastore.h"

#include <QDateTime>
#include <QDir>
#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

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
    if (store->hasUnwrittenChanges() && !AppCommands::isDiscardingUnwritten())
        keepUnwrittenElsewhere(store);
}

// Nobody can be asked as the application ends from outside: what the data folder did not take
// goes to a folder of its own in the home folder (or the temporary folder), and stderr says where.
void AppDelegate::keepUnwrittenElsewhere(DataStore *store)
{
    const QString name = u"Varnholt unsaved %1"_s.arg(QDateTime::currentDateTime().toString(u"yyyy-MM-dd HHmmss"_s));
    for (const QString &base : {QDir::homePath(), QDir::tempPath()}) {
        const QString folder = base + u'/' + name;
        if (store->exportTo(folder).isEmpty()) {
            std::fprintf(stderr, "varnholt: changes could not be saved to %s (%s); a copy of all data is in %s\n",
                         qPrintable(store->dataDirectory()), qPrintable(store->saveFailure()), qPrintable(folder));
            return;
        }
    }
    std::fprintf(stderr, "varnholt: changes could not be saved to %s (%s), nor copied elsewhere\n",
                 qPrintable(store->dataDirectory()), qPrintable(store->saveFailure()));
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
        AppCommands::endNow(); // aboutToQuit saves
    });
    struct sigaction action
    {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}
