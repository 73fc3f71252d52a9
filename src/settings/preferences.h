#pragma once

#include <QObject>

class QSettings;

// Preferences of the views that live under keys of their own: the editor's font size.
class Preferences : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double editorFontSize READ editorFontSize WRITE setEditorFontSize NOTIFY editorFontSizeChanged)
    Q_PROPERTY(double minimumEditorFontSize READ minimumEditorFontSize CONSTANT)
    Q_PROPERTY(double maximumEditorFontSize READ maximumEditorFontSize CONSTANT)

public:
    static constexpr QLatin1StringView editorFontSizeKey{"editorFontSize"};
    static constexpr double defaultEditorFontSize = 14;
    static constexpr double lowestEditorFontSize = 10;
    static constexpr double highestEditorFontSize = 24;

    // `settings` must outlive the object.
    explicit Preferences(QSettings *settings, QObject *parent = nullptr);

    [[nodiscard]] static Preferences *shared();

    // Points; a stored value that is not a finite number from 10 to 24 reads as 14.
    [[nodiscard]] double editorFontSize() const { return m_editorFontSize; }
    [[nodiscard]] static double minimumEditorFontSize() { return lowestEditorFontSize; }
    [[nodiscard]] static double maximumEditorFontSize() { return highestEditorFontSize; }
    // Kept within 10 to 24; a value that is no number is ignored.
    void setEditorFontSize(double size);

Q_SIGNALS:
    void editorFontSizeChanged();

private:
    QSettings *m_settings = nullptr;
    double m_editorFontSize = defaultEditorFontSize;
};
