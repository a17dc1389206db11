#pragma once

#include "UI/Style/Style.h"

#include <QApplication>
#include <QStyleFactory>

namespace pavonel::test {

/// Qt's controls have our style for as long as this lives, as they have in the program.
class Styled {
public:
    explicit Styled(const DisplayServices &display) { QApplication::setStyle(new Style(display)); }
    Styled(const Styled &) = delete;
    Styled &operator=(const Styled &) = delete;
    ~Styled() { QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion"))); }
};

} // namespace pavonel::test
