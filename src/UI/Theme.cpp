#include "UI/Theme.h"

#include <algorithm>

namespace pavonel {

const std::vector<Background> &Theme::gradients() {
    const auto rgb = [](float red, float green, float blue) { return QColor::fromRgbF(red, green, blue); };
    static const std::vector<Background> all{
        {0, QStringLiteral("Night"), {rgb(0.05F, 0.07F, 0.13F), rgb(0.10F, 0.13F, 0.24F)}},
        {1, QStringLiteral("Dusk"), {rgb(0.16F, 0.11F, 0.28F), rgb(0.39F, 0.18F, 0.33F)}},
        {2, QStringLiteral("Forest"), {rgb(0.04F, 0.16F, 0.14F), rgb(0.08F, 0.29F, 0.24F)}},
        {3, QStringLiteral("Ocean"), {rgb(0.03F, 0.14F, 0.24F), rgb(0.05F, 0.31F, 0.42F)}},
        {4, QStringLiteral("Sand"), {rgb(0.26F, 0.18F, 0.12F), rgb(0.45F, 0.31F, 0.19F)}},
        // A gradient too, so that every theme is drawn the same way.
        {5, QStringLiteral("Plain black"), {Qt::black, Qt::black}},
    };
    return all;
}

const Background &Theme::gradient(int backgroundStyle) {
    const auto &all = gradients();
    return all[static_cast<std::size_t>(std::clamp(backgroundStyle, 0, static_cast<int>(all.size()) - 1))];
}

} // namespace pavonel
