#pragma once

#include "Platform/StatusPublisher.h"

namespace pavonel::test {

struct FakeStatusPublisher final : StatusPublisher {
    RemoteControl *served = nullptr;
    int told = 0;

    void serve(RemoteControl *control) override { served = control; }
    void tellChange() override { ++told; }
};

} // namespace pavonel::test
