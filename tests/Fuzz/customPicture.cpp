#include "Fuzz/Target.h"
#include "UI/BackgroundImage.h"

namespace pavonel::fuzz {

void customPicture(const QByteArray &input) {
    constexpr QSize screen(64, 36);
    const QImage picture = pictureImage(input, screen);
    require(picture.isNull() || picture.size() == screen);
}

} // namespace pavonel::fuzz
