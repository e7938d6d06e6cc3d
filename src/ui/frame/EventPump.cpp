// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/EventPump.h"

#include <QCoreApplication>
#include <QTimer>

namespace tavrin {

void PumpEvents(std::chrono::milliseconds wait) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTimer wakeUp;
    wakeUp.setSingleShot(true);
    wakeUp.start(wait);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
}

}  // namespace tavrin
