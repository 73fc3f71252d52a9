#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QTimer>
#include <QUuid>

class DataStore;

// The two ways text reaches the editor from outside it (a restored version, SQL applied
// from the assistant). Both change the store, then make the selection leave and come back
// 50 ms later, so that the editor reloads the selected document.
class ContentController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    // A new value asks for a reload of the selected document.
    Q_PROPERTY(int editorContentTrigger READ editorContentTrigger NOTIFY editorContentTriggerChanged)
    Q_PROPERTY(QString currentEditorContent READ currentEditorContent WRITE setCurrentEditorContent NOTIFY
                   currentEditorContentChanged)

public:
    explicit ContentController(QObject *parent = nullptr);
    explicit ContentController(DataStore *store, QObject *parent = nullptr);

    [[nodiscard]] int editorContentTrigger() const { return m_editorContentTrigger; }
    [[nodiscard]] QString currentEditorContent() const { return m_currentEditorContent; }
    void setCurrentEditorContent(const QString &content);

    // After a version was restored.
    Q_INVOKABLE void reloadEditor();
    // Puts `sql` into the selected document and the editor; nothing without a selection.
    Q_INVOKABLE void applySQL(const QString &sql);

Q_SIGNALS:
    void editorContentTriggerChanged();
    void currentEditorContentChanged();

private:
    DataStore *m_store = nullptr;
    int m_editorContentTrigger = 0;
    QString m_currentEditorContent;
};
