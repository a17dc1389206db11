#pragma once

#include "support/Compositor.h"
#include "support/XServer.h"

#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// A weston inside a virtual X server: it has no layer shell, and here no X server beside it.
class Weston final : public Compositor {
public:
    Weston();
    ~Weston() override;

    QProcessEnvironment environment() const override;
    VirtualInput &input() override { return *input_; }
    void pointAt(QPoint point) override;
    QImage picture() override { return screen_.picture(); }
    void end() override { process_.reset(); }

private:
    void placeOutputs();

    XServer screen_; ///< On which the outputs are windows.
    QTemporaryDir home_;
    QTemporaryDir runtime_;
    std::unique_ptr<ChildProcess> process_;
    std::unique_ptr<VirtualInput> input_;
};

} // namespace pavonel::test
