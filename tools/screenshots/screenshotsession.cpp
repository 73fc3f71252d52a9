#include "screenshotsession.h"

#include <QEventLoop>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

ScreenshotSession::ScreenshotSession(QQuickWindow *window, DataStore *store, QString outputFolder,
                                     QString language, QString appearance)
    : m_window(window)
    , m_store(store)
    , m_outputFolder(std::move(outputFolder))
    , m_language(std::move(language))
    , m_appearance(std::move(appearance))
{}

void ScreenshotSession::wait(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

QObject *ScreenshotSession::find(const char *objectName) const
{
    return m_window->findChild<QObject *>(QLatin1StringView(objectName));
}

void ScreenshotSession::shoot(const QString &state, int settleMs, QQuickWindow *window) const
{
    wait(settleMs);
    const QString path = u"%1/%2-%3-%4.png"_s.arg(m_outputFolder, state, m_language, m_appearance);
    (window ? window : m_window)->grabWindow().save(path);
    std::printf("%s\n", qPrintable(path));
}
