#pragma once

#include <QObject>

class DataStore;
class QGuiApplication;
class QSocketNotifier;

// Process-wide duties of the application: the store is saved and its writes finished at
// every way the application can end, Quit, the last window closing, the user logging out,
// or SIGTERM, SIGINT and SIGHUP from outside; what the data folder does not take is then
// copied elsewhere.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(QGuiApplication *application);
    ~AppDelegate() override;

    // Writes whatever changed and waits for the writes.
    static void saveStore();

private:
    void installSignalHandlers();
    static void keepUnwrittenElsewhere(DataStore *store);

    QSocketNotifier *m_signalNotifier = nullptr;
};
