#include "core/VextilMainQueue.h"

#include "core/VextilThreadHandoff.h"

#include <QCoreApplication>
#include <QPointer>

void VextilMainQueue::dispatchAsync(QObject *guard, std::function<void()> work)
{
    QPointer<QObject> alive(guard);
    // Posting to the application object keeps one queue for all of the toolkit's GUI work,
    // whatever thread the guard lives in.
    QMetaObject::invokeMethod(qApp, VextilThreadHandoff([alive, work = std::move(work)] {
                                  if (alive)
                                      work();
                              }),
                              Qt::QueuedConnection);
}

void VextilMainQueue::adopt(QObject *object)
{
    if (QCoreApplication *app = QCoreApplication::instance(); app && object->thread() != app->thread())
        object->moveToThread(app->thread());
}
