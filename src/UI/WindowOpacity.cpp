#include "UI/WindowOpacity.h"

#include "Platform/WindowLayers.h"

#include <QGraphicsOpacityEffect>
#include <QWidget>

namespace pavonel {

Fading fadingOn(const WindowLayers &layers) {
    if (layers.canFade())
        return Fading::byDesktop;
    return layers.canBlend() ? Fading::byPainting : Fading::impossible;
}

WindowOpacity::WindowOpacity(QWidget &window, Fading fading) : window_(window), fading_(fading) {
    if (fading == Fading::byPainting)
        window.setAttribute(Qt::WA_TranslucentBackground);
}

WindowOpacity::~WindowOpacity() {
    delete effect_;
}

void WindowOpacity::set(double opacity) {
    if (fading_ == Fading::byDesktop)
        window_.setWindowOpacity(opacity);
    if (fading_ != Fading::byPainting)
        return;
    if (opacity >= 1) {
        window_.setGraphicsEffect(nullptr);
        return;
    }
    if (!effect_) {
        effect_ = new QGraphicsOpacityEffect;
        window_.setGraphicsEffect(effect_);
    }
    effect_->setOpacity(opacity);
}

QPixmap WindowOpacity::wholePicture() {
    if (effect_)
        effect_->setEnabled(false);
    const QPixmap picture = window_.grab();
    if (effect_)
        effect_->setEnabled(true);
    return picture;
}

} // namespace pavonel
