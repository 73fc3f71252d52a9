#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QRect>
#include <QWindow>

class QSettings;

// Where the main window was and which panel was open, kept in the preferences so that the next
// start comes back the same way. The document that was open comes back through the store's
// last opened document.
class WindowState : public QObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    static constexpr QLatin1StringView geometryKey{"window_geometry"};
    static constexpr QLatin1StringView maximizedKey{"window_maximized"};
    static constexpr QLatin1StringView rightPanelKey{"right_panel"};

    explicit WindowState(QObject *parent = nullptr);
    // `settings` must outlive the object.
    explicit WindowState(QSettings *settings, QObject *parent = nullptr);

    // Puts the window where it was; a place on no screen of today is left to the desktop.
    Q_INVOKABLE void restore(QWindow *window) const;
    Q_INVOKABLE void save(QWindow *window);
    // 0 none, 1 version history, 2 assistant, as the content view numbers them.
    Q_INVOKABLE [[nodiscard]] int rightPanel() const;
    Q_INVOKABLE void setRightPanel(int panel);

private:
    QSettings *m_settings = nullptr;
};
