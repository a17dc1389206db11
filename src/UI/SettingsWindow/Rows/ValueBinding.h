#pragma once

#include "Core/Settings.h"

#include <functional>

namespace pavonel {

/// A value that a row shows and writes, but that is kept elsewhere; as a rule a setting.
template <class T> struct ValueBinding {
    ValueBinding(Setting<T> &setting)
        : get([&setting] { return setting.get(); }), set([&setting](const T &value) { setting = value; }) {}

    /// Both must hold for as long as the row is shown.
    ValueBinding(std::function<T()> getter, std::function<void(const T &)> setter)
        : get(std::move(getter)), set(std::move(setter)) {}

    std::function<T()> get;
    std::function<void(const T &)> set;
};

} // namespace pavonel
