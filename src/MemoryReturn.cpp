#include "MemoryReturn.h"

#include "Platform/Allocator.h"
#include "Platform/ProgramCode.h"

#include <QCoreApplication>
#include <QEvent>

namespace pavonel {

MemoryReturn::MemoryReturn(MainLoop &loop) : loop_(loop) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool MemoryReturn::eventFilter(QObject *watched, QEvent *event) {
    constexpr Seconds pause = 1;
    if (event->type() == QEvent::Hide && watched->isWindowType())
        pause_ = loop_.after(pause, [] {
            returnFreePages();
            returnCode();
        });
    return false;
}

} // namespace pavonel
