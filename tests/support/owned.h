#pragma once

#include <cstdlib>
#include <memory>

namespace pavonel::test {

/// A reply of xcb's, freed by whoever holds it; null where there was none.
template <class Reply> std::unique_ptr<Reply, decltype(&std::free)> owned(Reply *reply) {
    return {reply, &std::free};
}

} // namespace pavonel::test
