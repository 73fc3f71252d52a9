#include "windowstate.h"

#include "appsettings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

const QStringList panelNames{u"none"_s, u"versionHistory"_s, u"aiAssistant"_s};

} // namespace

WindowState::WindowState(QObject *parent)
    : WindowState(applicationSettings(), parent)
{}

WindowState::WindowState(QSettings *settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{}

void WindowState::restore(QWindow *window) const
{
    if (!window)
        return;
    const QRect geometry = m_settings->value(geometryKey).toRect();
    if (geometry.isValid() && geometry.width() >= window->minimumWidth() &&
        geometry.height() >= window->minimumHeight()) {
        bool onAScreen = false;
        for (const QScreen *screen : QGuiApplication::screens())
            onAScreen = onAScreen || screen->availableGeometry().intersects(geometry);
        if (onAScreen)
            window->setGeometry(geometry);
        else
            window->resize(geometry.size());
    }
    if (m_settings->value(maximizedKey, false).toBool())
        window->setWindowStates(window->windowStates() | Qt::WindowMaximized);
}

void WindowState::save(QWindow *window)
{
    if (!window)
        return;
    const bool maximized = window->windowStates() & (Qt::WindowMaximized | Qt::WindowFullScreen);
    m_settings->setValue(maximizedKey, maximized);
    // A maximised window keeps the place it had before, for when it is made smaller again.
    if (!maximized)
        m_settings->setValue(geometryKey, window->geometry());
}

int WindowState::rightPanel() const
{
    return std::max<qsizetype>(0, panelNames.indexOf(m_settings->value(rightPanelKey).toString()));
}

void WindowState::setRightPanel(int panel)
{
    m_settings->setValue(rightPanelKey, panelNames.value(panel, panelNames.constFirst()));
}
