#pragma once

#include "support/Compositor.h"
#include "support/FakeInput.h"
#include "support/MessageBus.h"

#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// A KWin that draws into memory. It has a session bus of its own, which the programs on it share; where it
/// asks permission of programs by their desktop files, here it asks none. Where it can give no pictures, the
/// test that makes it is skipped.
class KWin final : public Compositor {
public:
    /// The outputs are called "Virtual-0", "Virtual-1" …
    explicit KWin(int outputs = 2);
    ~KWin() override;

    QProcessEnvironment environment() const override;

    /// The address of its session bus.
    QString bus() const { return bus_.address(); }

    /// The path of the socket on which programs find it.
    QString socket() const { return socket_; }

    VirtualInput &input() override { return *input_; }
    void pointAt(QPoint point) override { input_->pointAt(point); }

    QImage picture() override;

    void end() override;

private:
    void paintBackground();
    static void skip();

    QTemporaryDir home_;
    QTemporaryDir runtime_;
    QString socket_;
    MessageBus bus_;
    std::unique_ptr<ChildProcess> process_;
    std::unique_ptr<ChildProcess> background_;
    std::unique_ptr<FakeInput> input_;
};

} // namespace pavonel::test
