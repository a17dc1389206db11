#include "AppDelegate.h"
#include "Platform/Platform.h"

#include <QApplication>

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("pavonel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Pavonel"));
    QApplication::setApplicationVersion(QStringLiteral(PAVONEL_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);

    pavonel::Platform::install(pavonel::makePlatform());
    pavonel::AppDelegate delegate;
    delegate.setUp();
    return QApplication::exec();
}
