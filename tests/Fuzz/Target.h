#pragma once

#include <QByteArray>

#include <cstdlib>
#include <vector>

namespace pavonel::fuzz {

/// A decoder of ours that reads what others wrote, to be fed with arbitrary bytes: no sanitizer may complain,
/// and what holds for every input is checked with `require`. Its seeds are the files in the folder
/// seeds/NAME, one input each.
struct Target {
    const char *name;
    void (*run)(const QByteArray &input);
};

/// All of them, each in the file of its name.
const std::vector<Target> &targets();

inline void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace pavonel::fuzz
