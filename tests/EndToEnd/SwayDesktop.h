#pragma once

#include "EndToEnd/ProgramAtHome.h"
#include "support/OtherWindow.h"
#include "support/Sway.h"

namespace pavonel::test {

/// Two outputs of sway side by side and the built program, looked at from outside: the pixels, and what sway
/// tells of its windows.
class SwayDesktop : public ProgramAtHome {
public:
    SwayDesktop();
    ~SwayDesktop();

    static QRect screen(int index) { return {QPoint(Sway::outputSize.width() * index, 0), Sway::outputSize}; }

    Sway &sway() { return *sway_; }

    /// Whether a break covers so many outputs, and nothing else can be seen on these.
    bool waitForBreak(int outputs = 2);
    bool waitForNoBreak();

    /// All that the program wrote to its standard error so far.
    QByteArray complaints();

private:
    explicit SwayDesktop(std::unique_ptr<Sway> sway);

    std::unique_ptr<Sway> sway_;
};

} // namespace pavonel::test
