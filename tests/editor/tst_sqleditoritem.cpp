#include "colourcheck.h"
#include "randomsql.h"
#include "sqleditoritem.h"
#include "sqlhighlightdriver.h"
#include "sqlhighlighter.h"
#include "sqltextlayout.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QPainter>

#include <limits>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

QString numberedLines(int count, const QString &line)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += line.arg(i);
    return text;
}

using KeyPresses = QList<QPair<int, int>>; // key, modifiers

} // namespace

// The editor's text field through real key, mouse and input-method events in a window.
class TestSQLEditorItem : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QQuickWindow> m_window;
    SQLEditorItem *m_item = nullptr;

    void setText(const QString &text) { m_item->document()->setPlainText(text); }
    // What the item paints now, colouring the lines it shows first.
    QImage paint()
    {
        QImage frame(m_item->size().toSize(), QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&frame);
        m_item->paint(&painter);
        return frame;
    }
    void type(const QString &text)
    {
        for (const QChar c : text) {
            const auto code = Qt::Key(c.toUpper().unicode());
            QTest::sendKeyEvent(QTest::Press, m_window.get(), code, QString(c), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, m_window.get(), code, QString(c), Qt::NoModifier);
        }
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_window.get(), key, modifiers);
    }
    // What an input method sends while a word is composed, and when it is committed or dropped.
    void sendPreedit(const QString &text, int cursor)
    {
        QInputMethodEvent event(text, {{QInputMethodEvent::Cursor, cursor, 1, {}}});
        QCoreApplication::sendEvent(m_item, &event);
    }
    void sendCommit(const QString &text)
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(m_item, &event);
    }
    // The point of the item where the text position `position` is drawn.
    QPoint pointOf(int position)
    {
        QTextCursor saved = m_item->textCursor();
        m_item->setCursorPosition(position);
        const QPoint point = m_item->cursorRectangle().center().toPoint();
        m_item->select(saved.anchor(), saved.position());
        return m_item->mapToScene(point).toPoint();
    }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QQuickWindow>();
        m_window->resize(480, 400);
        m_item = new SQLEditorItem(m_window->contentItem());
        m_item->setSize(QSizeF(480, 320));
        m_item->setHorizontalPadding(12);
        m_item->setVerticalPadding(16);
        QFont font(u"DejaVu Sans Mono"_s);
        font.setPointSize(11);
        m_item->setFont(font);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_item->forceActiveFocus();
        QTRY_VERIFY(m_item->hasActiveFocus());
    }
    void cleanup() { m_window.reset(); }

    void typingEditingAndUndo()
    {
        type(u"select 1"_s);
        key(Qt::Key_Return);
        key(Qt::Key_Tab);
        type(u"from t"_s);
        QCOMPARE(m_item->text(), u"select 1\n    from t"_s);
        key(Qt::Key_Backspace, Qt::ControlModifier);
        QCOMPARE(m_item->text(), u"select 1\n    from "_s);
        key(Qt::Key_Home, Qt::ControlModifier);
        key(Qt::Key_Delete);
        QCOMPARE(m_item->text(), u"elect 1\n    from "_s);
        // Control keys that make no text leave it alone.
        key(Qt::Key_K, Qt::ControlModifier);
        QCOMPARE(m_item->text(), u"elect 1\n    from "_s);
        key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_item->text(), u"select 1\n    from "_s);
        while (m_item->canUndo())
            key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_item->text(), QString());
        key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_item->text(), u"select 1"_s);
    }

    void keyboardSelection_data()
    {
        QTest::addColumn<KeyPresses>("keys");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("cursor");
        const auto shift = int(Qt::ShiftModifier);
        const auto ctrl = int(Qt::ControlModifier);
        QTest::newRow("shift with arrows")
            << KeyPresses{{Qt::Key_Right, shift}, {Qt::Key_Right, shift}, {Qt::Key_Right, shift}}
            << u"sel"_s << 3;
        QTest::newRow("by word") << KeyPresses{{Qt::Key_Right, shift | ctrl}} << u"select "_s << 7;
        QTest::newRow("to the line end") << KeyPresses{{Qt::Key_End, shift}} << u"select a, b"_s << 11;
        QTest::newRow("down a line") << KeyPresses{{Qt::Key_Down, shift}} << u"select a, b\n"_s << 12;
        QTest::newRow("to the end") << KeyPresses{{Qt::Key_End, shift | ctrl}}
                                    << u"select a, b\nfrom t\nwhere a > 1"_s << 30;
        QTest::newRow("left leaves a selection at its start")
            << KeyPresses{{Qt::Key_End, shift}, {Qt::Key_Left, 0}} << QString() << 0;
        QTest::newRow("right leaves it at its end")
            << KeyPresses{{Qt::Key_End, shift}, {Qt::Key_Right, 0}} << QString() << 11;
        QTest::newRow("home and end of the text")
            << KeyPresses{{Qt::Key_End, ctrl}, {Qt::Key_Home, shift}} << u"where a > 1"_s << 19;
    }
    void keyboardSelection()
    {
        QFETCH(KeyPresses, keys);
        QFETCH(QString, selected);
        QFETCH(int, cursor);
        setText(u"select a, b\nfrom t\nwhere a > 1"_s);
        for (const auto &[pressed, modifiers] : keys)
            key(Qt::Key(pressed), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(m_item->selectedText(), selected);
        QCOMPARE(m_item->cursorPosition(), cursor);
    }

    // Tab over lines indents each, Shift+Tab takes one indent away, each one undo step.
    void tabIndentsLines()
    {
        setText(u"select a\nfrom t\n\twhere x"_s);
        m_item->select(2, 12);
        key(Qt::Key_Tab);
        QCOMPARE(m_item->text(), u"    select a\n    from t\n\twhere x"_s);
        m_item->select(0, int(m_item->text().size()));
        key(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(m_item->text(), u"select a\nfrom t\nwhere x"_s);
        key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_item->text(), u"    select a\n    from t\n\twhere x"_s);
        key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_item->text(), u"select a\nfrom t\n\twhere x"_s);
    }

    void mouseSelection()
    {
        setText(u"select alpha, beta\nfrom gamma\nwhere delta = 1"_s);
        QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, pointOf(9));
        QCOMPARE(m_item->cursorPosition(), 9);
        QTest::mouseClick(m_window.get(), Qt::LeftButton, Qt::ShiftModifier, pointOf(24));
        QCOMPARE(m_item->selectedText(), u"pha, beta\nfrom "_s);

        QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 50);
        const QPoint inGamma = pointOf(26);
        QTest::mouseDClick(m_window.get(), Qt::LeftButton, {}, inGamma);
        QCOMPARE(m_item->selectedText(), u"gamma"_s);
        // A third click soon after picks the whole line.
        QTest::mousePress(m_window.get(), Qt::LeftButton, {}, inGamma);
        QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, inGamma);
        QCOMPARE(m_item->selectedText(), u"from gamma\n"_s);

        QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 50);
        QTest::mousePress(m_window.get(), Qt::LeftButton, {}, pointOf(0));
        QTest::mouseMove(m_window.get(), pointOf(6));
        QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, pointOf(6));
        QCOMPARE(m_item->selectedText(), u"select"_s);
    }

    // Holding a drag below the view scrolls the text and grows the selection with it.
    void dragScrollsTheText()
    {
        setText(numberedLines(400, u"select %1 from t;\n"_s));
        QTest::mousePress(m_window.get(), Qt::LeftButton, {}, pointOf(0));
        QTest::mouseMove(m_window.get(), QPoint(100, 370));
        QTRY_VERIFY(m_item->contentY() > 200);
        QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, QPoint(100, 370));
        QVERIFY(m_item->selectionEnd() > 100);
        QCOMPARE(m_item->selectionStart(), 0);
        const qreal stopped = m_item->contentY();
        QTest::qWait(100);
        QCOMPARE(m_item->contentY(), stopped);
    }

    void clipboard()
    {
        setText(u"select 1"_s);
        m_item->select(0, 6);
        key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"select"_s);
        key(Qt::Key_End);
        QGuiApplication::clipboard()->setText(u"\r\nunion select 2"_s);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_item->document()->blockCount(), 2);
        m_item->select(0, 9);
        key(Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"select 1\n"_s);
        QVERIFY(m_item->text().startsWith(u"union select 2"_s));
        if (QGuiApplication::clipboard()->supportsSelection()) {
            m_item->select(0, 5);
            QCOMPARE(QGuiApplication::clipboard()->text(QClipboard::Selection), u"union"_s);
        }
    }

    // Composition shows in place without touching the text; a commit is one undoable edit and
    // a cancel leaves nothing; the candidate window is told where the caret is.
    void inputMethodComposition()
    {
        type(u"select "_s);
        const QRectF before = m_item->inputMethodQuery(Qt::ImCursorRectangle).toRectF();
        sendPreedit(u"にほん"_s, 3);
        QCOMPARE(m_item->preeditText(), u"にほん"_s);
        QCOMPARE(m_item->text(), u"select "_s);
        const QRectF during = m_item->inputMethodQuery(Qt::ImCursorRectangle).toRectF();
        QVERIFY(during.left() > before.left() + 10);
        QCOMPARE(during.top(), before.top());
        QCOMPARE(m_item->inputMethodQuery(Qt::ImSurroundingText).toString(), u"select "_s);

        sendCommit(u"日本"_s);
        QCOMPARE(m_item->text(), u"select 日本"_s);
        QCOMPARE(m_item->preeditText(), QString());
        QCOMPARE(m_item->inputMethodQuery(Qt::ImCursorPosition).toInt(), 9);

        sendPreedit(u"zhong"_s, 5);
        sendPreedit(QString(), 0); // the user cancels
        QCOMPARE(m_item->text(), u"select 日本"_s);
        QCOMPARE(m_item->preeditText(), QString());

        key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_item->text(), u"select "_s);

        // A composition over a selection replaces it.
        m_item->select(0, 6);
        sendPreedit(u"せ"_s, 1);
        sendCommit(u"選択"_s);
        QCOMPARE(m_item->text(), u"選択 "_s);
    }

    // Only what is shown is laid out; jumps and pages keep the caret in view, lines wrap.
    void largeTextAndScrolling()
    {
        setText(numberedLines(20000, u"insert into t values (%1, 'a fairly long line of text that wraps');\n"_s));
        SQLTextLayout *layout = m_item->textLayout();
        QTest::qWait(50); // a frame
        QVERIFY(SQLTextLayout::isLaidOut(m_item->document()->findBlockByNumber(0)));
        QVERIFY(m_item->document()->findBlockByNumber(0).lineCount() > 1);
        int laidOut = 0;
        for (QTextBlock block = m_item->document()->begin(); block.isValid(); block = block.next())
            laidOut += block.layout()->lineCount() > 0;
        QVERIFY2(laidOut < 40, qPrintable(QString::number(laidOut)));

        key(Qt::Key_End, Qt::ControlModifier);
        QVERIFY(m_item->contentY() > 0);
        const QRectF caret = m_item->cursorRectangle();
        QVERIFY(caret.top() >= 0 && caret.bottom() <= m_item->height());
        QCOMPARE(m_item->contentY() + m_item->height(), m_item->contentHeight());
        QCOMPARE(m_item->contentHeight(), layout->lineCount() * layout->lineHeight() + 32);

        // A page up moves the caret about a screen's lines and keeps it where it was shown.
        const int before = m_item->cursorPosition();
        key(Qt::Key_PageUp);
        const int paged = layout->lineOfPosition(before) - layout->lineOfPosition(m_item->cursorPosition());
        QVERIFY2(paged >= int(m_item->height() / layout->lineHeight()) - 2, qPrintable(QString::number(paged)));
        QVERIFY(qAbs(m_item->cursorRectangle().top() - caret.top()) <= layout->lineHeight());

        // The wheel scrolls up by lines, into blocks not laid out before, without a jump.
        const int topLine = int(m_item->contentY() / layout->lineHeight());
        const int topBlock = layout->blockAtLine(topLine).first.blockNumber();
        QWheelEvent wheel(QPointF(100, 100), m_item->mapToGlobal(QPointF(100, 100)), {}, QPoint(0, 120),
                          Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_item, &wheel);
        const int newTopBlock = layout->blockAtLine(int(m_item->contentY() / layout->lineHeight())).first.blockNumber();
        QVERIFY2(topBlock - newTopBlock >= 1 && topBlock - newTopBlock <= 3,
                 qPrintable(u"%1 -> %2"_s.arg(topBlock).arg(newTopBlock)));

        // A jump by the scroll bar to the middle shows the middle's lines.
        m_item->setContentY(m_item->contentHeight() / 2);
        const QTextBlock middle = layout->blockAtLine(int(m_item->contentY() / layout->lineHeight())).first;
        QVERIFY(middle.position() > m_item->document()->characterCount() / 3);
    }

    // The finder's matches are painted behind the text while it is active, and only then.
    void findMatchesAreHighlighted()
    {
        setText(u"select id from t;\nselect name from u;"_s);
        m_item->setFindHighlightColor(Qt::red);
        const auto redAt = [this](const QImage &frame, int position) {
            const QRectF caret = m_item->positionToRectangle(position);
            return frame.pixelColor(QPointF(caret.left() + 2, caret.top() + 2).toPoint()) == QColor(Qt::red);
        };
        SQLTextFinder *finder = m_item->finder();
        finder->setPattern(u"from"_s);
        QVERIFY(!redAt(paint(), 10));
        finder->setActive(true);
        const QImage found = paint();
        QVERIFY(redAt(found, 10));
        QVERIFY(redAt(found, 30));
        QVERIFY(!redAt(found, 2));
    }

    // Screen readers read the text by lines and follow the caret and the selection.
    void accessibleText()
    {
        setText(u"select a\nfrom t\nwhere x = 1"_s);
        m_item->setAccessibleName(u"SQL"_s);
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(m_item);
        QVERIFY(accessible);
        QCOMPARE(accessible->role(), QAccessible::EditableText);
        QCOMPARE(accessible->text(QAccessible::Name), u"SQL"_s);
        QVERIFY(accessible->state().multiLine && accessible->state().editable);
        QAccessibleTextInterface *text = accessible->textInterface();
        QVERIFY(text);
        QCOMPARE(text->characterCount(), 27);
        int start = 0;
        int end = 0;
        QCOMPARE(text->textAtOffset(11, QAccessible::LineBoundary, &start, &end), u"from t\n"_s);
        QCOMPARE(text->textAtOffset(2, QAccessible::WordBoundary, &start, &end), u"select"_s);
        QCOMPARE(text->textAtOffset(20, QAccessible::LineBoundary, &start, &end), u"where x = 1"_s);
        key(Qt::Key_Down);
        QCOMPARE(text->cursorPosition(), 9);
        text->setSelection(0, 0, 6);
        QCOMPARE(m_item->selectedText(), u"select"_s);
        QCOMPARE(text->selectionCount(), 1);
        const QRect character = text->characterRect(9);
        QCOMPARE(text->offsetAtPoint(character.center() + QPoint(1, 0)), 9);
        QVERIFY(accessible->parent());
    }

    // Random sessions of typing, pastes with CRLF, undo and redo, and input-method commits,
    // through the item's events; after each step the text equals that of a plain document
    // given the same edits, and once the colouring is done every block carries the colours
    // of the whole-text pass.
    void randomSessionsMatchAPlainDocument_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::newRow("session 1") << 201u;
        QTest::newRow("session 2") << 202u;
        QTest::newRow("session 3") << 203u;
    }
    void randomSessionsMatchAPlainDocument()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        SQLHighlightDriver driver;
        driver.setDocument(m_item->document());
        m_item->textLayout()->setHighlighter(&driver);
        QTextDocument plain;
        const QString start = randomsql::text(random, 60, true);
        setText(start);
        plain.setPlainText(start);
        QTextCursor expected(&plain);
        for (int step = 0; step < 150; ++step) {
            const int position = random.bounded(plain.characterCount());
            m_item->setCursorPosition(position);
            expected.setPosition(position);
            QString what;
            switch (random.bounded(6)) {
            case 0: {
                // What a keyboard types: no control characters.
                QString typed = randomsql::text(random, 1, false).left(12);
                typed.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
                type(typed);
                for (const QChar c : typed) // a key at a time, as the undo stack sees typing
                    expected.insertText(QString(c));
                what = u"typing"_s;
                break;
            }
            case 1: {
                const int end = std::min(plain.characterCount() - 1, position + random.bounded(200));
                m_item->select(position, end);
                expected.setPosition(end, QTextCursor::KeepAnchor);
                QString pasted = randomsql::text(random, random.bounded(20), true);
                if (random.bounded(2))
                    pasted.replace(u"\n"_s, u"\r\n"_s);
                QGuiApplication::clipboard()->setText(pasted);
                key(Qt::Key_V, Qt::ControlModifier);
                if (!pasted.isEmpty()) // an empty clipboard pastes nothing
                    expected.insertText(pasted);
                what = u"paste"_s;
                break;
            }
            case 2:
                key(Qt::Key_Backspace);
                expected.deletePreviousChar();
                what = u"backspace"_s;
                break;
            case 3:
                sendPreedit(u"ひょう"_s, 3);
                sendCommit(u"表"_s);
                expected.beginEditBlock();
                expected.insertText(u"表"_s);
                expected.endEditBlock();
                what = u"input method"_s;
                break;
            case 4:
                key(Qt::Key_Return);
                expected.insertBlock();
                what = u"return"_s;
                break;
            default:
                if (random.bounded(2)) {
                    key(Qt::Key_Z, Qt::ControlModifier);
                    plain.undo();
                    what = u"undo"_s;
                } else {
                    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
                    plain.redo();
                    what = u"redo"_s;
                }
            }
            QVERIFY2(m_item->text() == plain.toPlainText(), qPrintable(u"step %1 (%2)"_s.arg(step).arg(what)));
            // What the item paints is coloured as the whole text would be; every line is, once
            // asked for.
            QImage frame(m_item->size().toSize(), QImage::Format_ARGB32_Premultiplied);
            QPainter painter(&frame);
            m_item->paint(&painter);
            const QTextBlock top =
                m_item->textLayout()->blockAtLine(int(m_item->contentY() / m_item->lineHeight())).first;
            const int shownLines = int(m_item->height() / m_item->lineHeight());
            QList<int> wrong = wrongColours(*m_item->document(), driver, top.blockNumber(),
                                            top.blockNumber() + shownLines / 2);
            if (wrong.isEmpty() && step % 10 == 0) {
                driver.colourAll();
                wrong = wrongColours(*m_item->document(), driver);
            }
            QVERIFY2(wrong.isEmpty(), qPrintable(u"step %1 (%2): block %3"_s.arg(step).arg(what).arg(wrong.value(0))));
            QCOMPARE(m_item->textLayout()->lineCount(), m_item->document()->lineCount());
        }
    }
};

QTEST_MAIN(TestSQLEditorItem)
#include "tst_sqleditoritem.moc"
