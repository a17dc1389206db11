#include "Platform/GivenEnvironment.h"

#include <map>
#include <mutex>
#include <optional>

#include <unistd.h>

namespace pavonel {

namespace {

std::mutex mutex; // a sound is started from a thread of its own

/// What we were given under each name that we have set since; absent where there was nothing.
using Replaced = std::map<QByteArray, std::optional<QByteArray>>;

Replaced &replaced() {
    static Replaced variables;
    return variables;
}

} // namespace

QByteArrayList givenEnvironment() {
    const std::lock_guard lock(mutex);
    QByteArrayList given;
    for (char **variable = environ; variable && *variable; ++variable) {
        const QByteArray text(*variable);
        if (!replaced().contains(text.left(text.indexOf('='))))
            given.append(text);
    }
    for (const auto &[name, value] : replaced()) {
        if (value)
            given.append(name + '=' + *value);
    }
    return given;
}

void setForUsAlone(const char *name, const QByteArray &value) {
    const std::lock_guard lock(mutex);
    replaced().try_emplace(name,
                           qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
    qputenv(name, value);
}

} // namespace pavonel
