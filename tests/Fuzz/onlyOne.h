#pragma once

#include <QCoreApplication>

#include <utility>

namespace pavonel::fuzz {

/// What a target makes once for all inputs: when first needed, and gone before Qt is.
template <class Thing> Thing &onlyOne() {
    static Thing *thing = nullptr;
    if (!thing) {
        thing = new Thing;
        qAddPostRoutine([] { delete std::exchange(thing, nullptr); });
    }
    return *thing;
}

} // namespace pavonel::fuzz
