#pragma once

#include "Platform/IdleTime.h"

#include <memory>
#include <utility>
#include <vector>

namespace pavonel {

/// Several sources of idle time in order of preference. What a desktop offers comes and goes, so each
/// question goes to the first that works now; where none does, to the last, which says what is missing.
class FirstIdleTime final : public IdleTime {
public:
    /// At least one.
    explicit FirstIdleTime(std::vector<std::unique_ptr<IdleTime>> sources) : sources_(std::move(sources)) {}

    Seconds idleSeconds() override { return source().idleSeconds(); }
    QString limitation() const override { return source().limitation(); }

private:
    IdleTime &source() const {
        for (const auto &each : sources_) {
            if (each->limitation().isEmpty())
                return *each;
        }
        return *sources_.back();
    }

    std::vector<std::unique_ptr<IdleTime>> sources_;
};

} // namespace pavonel
