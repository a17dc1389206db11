#include "CodeReturn.h"

#include "Platform/ProgramCode.h"

#include <QCoreApplication>
#include <QEvent>

#include <chrono>

namespace pavonel {

CodeReturn::CodeReturn() {
    using namespace std::chrono_literals;
    pause_.setSingleShot(true);
    pause_.setInterval(1s);
    connect(&pause_, &QTimer::timeout, this, &returnCode);
    QCoreApplication::instance()->installEventFilter(this);
}

bool CodeReturn::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Hide && watched->isWindowType())
        pause_.start();
    return false;
}

} // namespace pavonel
