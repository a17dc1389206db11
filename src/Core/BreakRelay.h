#pragma once

#include "Core/BreakVocabulary.h"

namespace pavonel {

/// Hears of every break, to tell it to somebody else: a paired phone.
class BreakRelay {
public:
    BreakRelay() = default;
    BreakRelay(const BreakRelay &) = delete;
    BreakRelay &operator=(const BreakRelay &) = delete;
    virtual ~BreakRelay() = default;

    virtual void breakStarted(BreakKind kind, const QString &title, Seconds duration) = 0;
    virtual void breakEnded() = 0;
};

} // namespace pavonel
