#include "UI/BackgroundImage.h"
#include "UI/Theme.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

namespace pavonel {

namespace {

// A pixel is four lanes of a byte, in the order in which its 32-bit word lies in memory.
constexpr std::size_t lanes = 4;
using Pixel = std::array<double, lanes>;

Pixel inLaneOrder(const QColor &color) {
    const double red = color.redF();
    const double green = color.greenF();
    const double blue = color.blueF();
    if constexpr (std::endian::native == std::endian::little)
        return {blue, green, red, 1};
    else
        return {1, red, green, blue};
}

// Brightness is counted in 256ths of a level. The dither adds up to one level before the fraction is cut off,
// so that just as many pixels get the higher level as the fraction says. The numbers are 16 bits wide, eight
// to an instruction, and may wrap around: their sum is what counts.
constexpr double unitsPerLevel = 256;
constexpr double highestLevel = 255;
using Units = std::vector<std::uint16_t>;

std::uint16_t wrapped(double units) {
    return static_cast<std::uint16_t>(static_cast<std::int32_t>(units));
}

// The dither is a lattice of low discrepancy, x and y times these numbers in 65536ths of a turn: neighbours
// differ widely, so the grain is fine, and it never repeats. Each lane has its own phase, because colours
// that step at different pixels are seen less.
constexpr std::uint32_t turnPerColumn = 49471;
constexpr std::uint32_t turnPerRow = 37345;
constexpr std::uint32_t turnPerLane = 65536 / 3;

/// A gradient is the sum of a column's part and a row's part, and so is its dither.
class Gradient {
public:
    Gradient(const Background &theme, QSize size)
        : first_(inLaneOrder(theme.colors.front())), last_(inLaneOrder(theme.colors.back())),
          height_(size.height()), columns_(lanes * static_cast<std::size_t>(size.width())),
          turns_(columns_.size()) {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const std::size_t lane = i % lanes;
            const auto x = static_cast<std::uint32_t>(i / lanes);
            columns_[i] = wrapped(
                std::round(highestLevel * unitsPerLevel * first_[lane] + change(lane, x, size.width())));
            turns_[i] = static_cast<std::uint16_t>(x * turnPerColumn +
                                                   static_cast<std::uint32_t>(lane) * turnPerLane);
        }
    }

    void fill(std::uint8_t *line, int y) const {
        constexpr std::size_t block = 4 * lanes; // so long that it fills whole registers
        std::array<std::uint16_t, block> row{};
        for (std::size_t i = 0; i < block; ++i) // cut off, so that no sum exceeds the highest level
            row[i] = wrapped(std::floor(change(i % lanes, static_cast<std::uint32_t>(y), height_)));
        const auto turn = static_cast<std::uint16_t>(static_cast<std::uint32_t>(y) * turnPerRow);
        const std::size_t count = columns_.size();
        std::size_t i = 0;
        for (; i + block <= count; i += block) {
            for (std::size_t j = 0; j < block; ++j)
                line[i + j] = level(columns_[i + j], row[j], turns_[i + j], turn);
        }
        for (std::size_t j = 0; i + j < count; ++j)
            line[i + j] = level(columns_[i + j], row[j], turns_[i + j], turn);
    }

private:
    /// What one axis contributes at a pixel's middle: half of the way, on its whole length.
    double change(std::size_t lane, std::uint32_t at, int length) const {
        return highestLevel * unitsPerLevel * (last_[lane] - first_[lane]) * (at + 0.5) / (2.0 * length);
    }

    static std::uint8_t level(std::uint16_t column, std::uint16_t row, std::uint16_t columnTurn,
                              std::uint16_t rowTurn) {
        const auto turn = static_cast<std::uint16_t>(columnTurn + rowTurn);
        const auto dither = static_cast<std::uint16_t>((turn >> 8) | 1); // never 0: rounding may be one short
        return static_cast<std::uint8_t>(static_cast<std::uint16_t>(column + row + dither) >> 8);
    }

    Pixel first_;
    Pixel last_;
    int height_;
    Units columns_;
    Units turns_;
};

} // namespace

QImage gradientImage(const Background &theme, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    const Gradient gradient(theme, size);
    for (int y = 0; y < image.height(); ++y)
        gradient.fill(image.scanLine(y), y);
    return image;
}

} // namespace pavonel
