#pragma once

#include <QObject>
#include <QString>

class DataStore;
class QQuickWindow;

// What a scene of the screenshot tool works with: the open main window on a prepared store,
// and the means to wait, find objects by name and save what the window shows.
class ScreenshotSession
{
public:
    ScreenshotSession(QQuickWindow *window, DataStore *store, QString outputFolder, QString language,
                      QString appearance);

    [[nodiscard]] QQuickWindow *window() const { return m_window; }
    [[nodiscard]] DataStore *store() const { return m_store; }
    // "en", "zh-Hans" or "ja".
    [[nodiscard]] QString language() const { return m_language; }

    // Runs the event loop for `ms` milliseconds.
    static void wait(int ms);
    // The first object of the window with this objectName, or null.
    [[nodiscard]] QObject *find(const char *objectName) const;
    // Saves the window (the main one unless named) as "<state>-<language>-<appearance>.png"
    // after letting it settle.
    void shoot(const QString &state, int settleMs = 150, QQuickWindow *window = nullptr) const;

private:
    QQuickWindow *m_window = nullptr;
    DataStore *m_store = nullptr;
    QString m_outputFolder;
    QString m_language;
    QString m_appearance;
};

// The scenes, one function per subsystem, run in this order; each leaves the window as it found
// it (no sheet open, no panel open) for the next.
void shootShellScenes(ScreenshotSession &session);
void shootEditorScenes(ScreenshotSession &session);
void shootAssistantScenes(ScreenshotSession &session);
void shootStoreScenes(ScreenshotSession &session);
void shootSettingsScenes(ScreenshotSession &session);
void shootVersionScenes(ScreenshotSession &session);
void shootEmptyStoreScene(ScreenshotSession &session);
