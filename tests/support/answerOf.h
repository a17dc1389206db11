#pragma once

#include "support/waitUntil.h"

#include <mutex>
#include <optional>
#include <utility>

#include <gtest/gtest.h>

namespace pavonel::test {

/// Waits for an answer that may come on any thread. `ask` is given what to call with it. Fails the test, and
/// gives an empty answer, when none comes.
template <class Answer, class Ask> Answer answerOf(const Ask &ask) {
    std::mutex mutex;
    std::optional<Answer> answer;
    ask([&](Answer given) {
        const std::scoped_lock lock(mutex);
        answer = std::move(given);
    });
    EXPECT_TRUE(waitUntil([&] {
        const std::scoped_lock lock(mutex);
        return answer.has_value();
    })) << "no answer";
    const std::scoped_lock lock(mutex);
    return answer.value_or(Answer());
}

} // namespace pavonel::test
