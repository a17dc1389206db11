#include "Platform/Linux/Wayland/LossOfCompositor.h"

#include <QGuiApplication>
#include <QThread>
#include <qpa/qplatformnativeinterface.h>

#include <utility>

#include <wayland-client.h>

namespace pavonel {

namespace {

constexpr int longest = 10'000;  // milliseconds that a disk may take
constexpr int everybody = 1'000; // more than there are threads

LossOfCompositor *listening = nullptr;
QtMessageHandler before = nullptr;

} // namespace

std::unique_ptr<Termination> LossOfCompositor::watch(std::unique_ptr<Termination> others) {
    if (!QGuiApplication::platformName().startsWith(u"wayland"))
        return others;
    auto *native = QGuiApplication::platformNativeInterface();
    auto *connection = static_cast<wl_display *>(native->nativeResourceForIntegration("wl_display"));
    return std::unique_ptr<Termination>(new LossOfCompositor(connection, std::move(others)));
}

LossOfCompositor::LossOfCompositor(wl_display *connectionOfQt, std::unique_ptr<Termination> others)
    : connection_(connectionOfQt), others_(std::move(others)) {
    listening = this;
    before = qInstallMessageHandler(listen);
}

LossOfCompositor::~LossOfCompositor() {
    qInstallMessageHandler(before);
    listening = nullptr;
}

void LossOfCompositor::onSave(std::function<void()> save) {
    save_ = save;
    others_->onSave(std::move(save));
}

/// Whatever the message says: Qt's wording is no promise.
void LossOfCompositor::listen(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    if (qApp && listening->isLost()) {
        if (QThread::currentThread() == qApp->thread())
            listening->save();
        else
            listening->awaitSave();
    }
    before(type, context, text);
}

/// The connection lives as long as the application object.
bool LossOfCompositor::isLost() const {
    return wl_display_get_error(connection_) != 0;
}

void LossOfCompositor::save() {
    if (!save_)
        return;
    std::exchange(save_, nullptr)();
    saved_.release(everybody);
}

void LossOfCompositor::awaitSave() {
    QMetaObject::invokeMethod(
        qApp, [this] { save(); }, Qt::QueuedConnection);
    saved_.tryAcquire(1, longest);
}

} // namespace pavonel
