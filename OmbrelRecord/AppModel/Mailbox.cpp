#include "OmbrelRecord/AppModel/Mailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaObject>
#include <utility>

namespace OmbrelRecord {

void Mailbox::Address::post(std::function<void()> work) const {
    QCoreApplication* application = QCoreApplication::instance();
    if (!application) return;
    QMetaObject::invokeMethod(
        application,
        [watch = watch, work = std::move(work)] {
            if (!watch.expired()) work();
        },
        Qt::QueuedConnection);
}

} // namespace OmbrelRecord
