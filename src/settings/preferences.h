#pragma once

#include <QObject>

class QSettings;

// Preferences of the views that live under keys of their own: the editor's font size.
class Preferences : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double editorFontSize READ editorFontSize WRITE setEditorFontSize NOTIFY editorFontSizeChanged)

public:
    static constexpr QLatin1StringView editorFontSizeKey{"editorFontSize"};
    static constexpr double defaultEditorFontSize = 14;

    // `settings` must outlive the object.
    explicit Preferences(QSettings *settings, QObject *parent = nullptr);

    [[nodiscard]] static Preferences *shared();

    [[nodiscard]] double editorFontSize() const { return m_editorFontSize; }
    void setEditorFontSize(double size);

Q_SIGNALS:
    void editorFontSizeChanged();

private:
    QSettings *m_settings = nullptr;
    double m_editorFontSize = defaultEditorFontSize;
};
