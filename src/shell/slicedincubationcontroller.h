#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QQmlIncubationController>

// Builds asynchronously loaded views in slices of a few milliseconds whenever the event loop is
// free. The window's own controller, under a render loop that draws on the GUI thread, builds in
// slices of about two thirds of a frame and then draws, so that a long reply built over a few
// frames still held the loop for more than a frame at a time.
class SlicedIncubationController : public QObject, public QQmlIncubationController
{
    Q_OBJECT

public:
    static constexpr int sliceMs = 4;

    explicit SlicedIncubationController(QObject *parent = nullptr);

protected:
    void incubatingObjectCountChanged(int count) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QBasicTimer m_timer;
};
