#pragma once

#include "Platform/QrCode.h"
#include "UI/Controls/AccessibleControl.h"

#include <QWidget>

namespace pavonel {

/// A code for the phone's camera: dark on white in every appearance, each module a whole number of device
/// pixels.
class QrCodeView : public QWidget, public AccessibleControl {
public:
    /// `text` is what the camera reads.
    explicit QrCodeView(const QString &text);

    QAccessibleInterface *makeAccessible() override;

    static constexpr int side = 132;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QrCode code_;
};

} // namespace pavonel
