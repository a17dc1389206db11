#pragma once

#include "Platform/QrCode.h"

#include <QWidget>

namespace pavonel {

/// A code to be typed elsewhere, large and evenly spaced. One that is too long for the width gets smaller.
class CodeView : public QWidget {
public:
    explicit CodeView(const QString &code);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QStringList code_; ///< Its characters.
};

/// A code for the phone's camera: dark on white in every appearance, each module a whole number of device
/// pixels. It grows along with the text.
class QrCodeView : public QWidget {
public:
    /// `text` is what the camera reads.
    explicit QrCodeView(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QrCode code_;
};

} // namespace pavonel
