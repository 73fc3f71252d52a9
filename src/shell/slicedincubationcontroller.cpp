#include "slicedincubationcontroller.h"

#include <QTimerEvent>

SlicedIncubationController::SlicedIncubationController(QObject *parent)
    : QObject(parent)
{}

void SlicedIncubationController::incubatingObjectCountChanged(int count)
{
    if (count > 0 && !m_timer.isActive())
        m_timer.start(0, this);
    else if (count == 0)
        m_timer.stop();
}

void SlicedIncubationController::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return QObject::timerEvent(event);
    incubateFor(sliceMs);
}
