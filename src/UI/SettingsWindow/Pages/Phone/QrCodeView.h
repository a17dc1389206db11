#pragma once

#include "Platform/QrCode.h"
#include "UI/Controls/AccessibleControl.h"

#include <QWidget>

namespace pavonel {

class Visuals;

/// A code for the phone's camera: dark on white in every appearance, each module a whole number of device
/// pixels. It grows along with the text.
class QrCodeView : public QWidget, public AccessibleControl {
public:
    /// `text` is what the camera reads.
    QrCodeView(Visuals &visuals, const QString &text);

    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Visuals &visuals_;
    QrCode code_;
};

} // namespace pavonel
