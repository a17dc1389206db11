#include "CodeReturn.h"

#include "Platform/ProgramCode.h"

#include <QCoreApplication>
#include <QEvent>

namespace pavonel {

CodeReturn::CodeReturn(MainLoop &loop) : loop_(loop) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool CodeReturn::eventFilter(QObject *watched, QEvent *event) {
    constexpr Seconds pause = 1;
    if (event->type() == QEvent::Hide && watched->isWindowType())
        pause_ = loop_.after(pause, returnCode);
    return false;
}

} // namespace pavonel
