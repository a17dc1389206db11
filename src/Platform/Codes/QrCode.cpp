#include "Platform/QrCode.h"

#include <qrencode.h>

#include <memory>

namespace pavonel {

QrCode QrCode::of(const QByteArray &text) {
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> made(
        QRcode_encodeString8bit(text.constData(), 0, QR_ECLEVEL_M), &QRcode_free);
    if (!made)
        return {};
    QrCode code{made->width, QByteArray(made->width * made->width, 0)};
    for (int i = 0; i < code.dark.size(); ++i)
        code.dark[i] = static_cast<char>(made->data[i] & 1U);
    return code;
}

} // namespace pavonel
