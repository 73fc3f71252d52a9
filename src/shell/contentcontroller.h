#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QTimer>
#include <QUuid>

class DataStore;
class SQLEditorController;

// The two ways text reaches the editor from outside it (a restored version, SQL applied
// from the assistant). A restore changes the store, then makes the selection leave and come
// back 50 ms later, so that the editor reloads the selected document. Both first keep the
// text they replace as a version, unless the latest version holds it already.
//
// Applied SQL first keeps the text it replaces as a version (unless the latest version holds
// it already), then replaces the editor's text as one edit that Undo takes back; without an
// editor on the document it goes the restore's way.
class ContentController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    // A new value asks for a reload of the selected document.
    Q_PROPERTY(int editorContentTrigger READ editorContentTrigger NOTIFY editorContentTriggerChanged)
    Q_PROPERTY(QString currentEditorContent READ currentEditorContent WRITE setCurrentEditorContent NOTIFY
                   currentEditorContentChanged)
    // The editor screen's controller, when there is one.
    Q_PROPERTY(SQLEditorController *editor READ editor WRITE setEditor NOTIFY editorChanged)

public:
    explicit ContentController(QObject *parent = nullptr);
    explicit ContentController(DataStore *store, QObject *parent = nullptr);

    [[nodiscard]] int editorContentTrigger() const { return m_editorContentTrigger; }
    [[nodiscard]] QString currentEditorContent() const { return m_currentEditorContent; }
    void setCurrentEditorContent(const QString &content);
    [[nodiscard]] SQLEditorController *editor() const { return m_editor; }
    void setEditor(SQLEditorController *editor);

    // After a version was restored.
    Q_INVOKABLE void reloadEditor();
    // Puts `sql` into the selected document and the editor; nothing without a selection.
    Q_INVOKABLE void applySQL(const QString &sql);
    // Restores a version of the selected document (its id as text) and reloads the editor.
    // Typing not yet in a version is kept as one first, so that the restore loses nothing.
    Q_INVOKABLE void restoreVersion(const QString &versionId);

Q_SIGNALS:
    void editorContentTriggerChanged();
    void currentEditorContentChanged();
    void editorChanged();

private:
    // Saves the document's text (with the editor's last typing) as a version, unless the latest
    // version holds it already.
    void keepTypedText(const QUuid &documentId, const QString &note);

    DataStore *m_store = nullptr;
    QPointer<SQLEditorController> m_editor;
    int m_editorContentTrigger = 0;
    QString m_currentEditorContent;
};
