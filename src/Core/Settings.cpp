#include "Core/Settings.h"

#include <cmath>
#include <limits>

namespace pavonel {

namespace {

/// What the store holds as a value of a setting's type, if it can be taken as one.
template <class T> std::optional<T> converted(const StoredValue &stored) {
    const auto *value = std::get_if<T>(&stored);
    return value ? std::optional(*value) : std::nullopt;
}

template <> std::optional<double> converted(const StoredValue &stored) {
    if (const auto *fraction = std::get_if<double>(&stored))
        return std::isfinite(*fraction) ? std::optional(*fraction) : std::nullopt;
    constexpr double limit = 9223372036854775808.0; // the first that a qint64 does not hold
    const auto *whole = std::get_if<qint64>(&stored);
    if (!whole)
        return {};
    const auto nearest = static_cast<double>(*whole);
    if (nearest >= limit || static_cast<qint64>(nearest) != *whole)
        return {};
    return nearest;
}

template <> std::optional<int> converted(const StoredValue &stored) {
    const auto number = converted<double>(stored);
    using Limits = std::numeric_limits<int>;
    if (!number || std::trunc(*number) != *number || *number < Limits::min() || *number > Limits::max())
        return {};
    return static_cast<int>(*number);
}

template <> std::optional<bool> converted(const StoredValue &stored) {
    if (const auto *truth = std::get_if<bool>(&stored))
        return *truth;
    const auto number = converted<double>(stored);
    if (number != 0.0 && number != 1.0)
        return {};
    return number == 1.0;
}

template <> std::optional<PlannedBreaks> converted(const StoredValue &stored) {
    const auto *data = std::get_if<QByteArray>(&stored);
    return data ? decodePlannedBreaks(*data) : std::nullopt;
}

template <class T> std::optional<StoredValue> encoded(const T &value) {
    return value;
}

template <> std::optional<StoredValue> encoded(const int &value) {
    return qint64{value};
}

template <> std::optional<StoredValue> encoded(const PlannedBreaks &breaks) {
    auto json = encodePlannedBreaks(breaks);
    return json ? std::optional<StoredValue>(std::move(*json)) : std::nullopt;
}

constexpr Seconds quietPeriod = 0.150;

} // namespace

StoredSetting::StoredSetting(Settings &settings, const char *key) : key_(QString::fromLatin1(key)) {
    settings.all_.push_back(this);
}

template <class T>
Setting<T>::Setting(Settings &settings, const char *key, T defaultValue)
    : Published<T>(settings, std::move(defaultValue)), StoredSetting(settings, key) {}

template <class T> void Setting<T>::load(const UserDefaults &defaults) {
    const auto stored = defaults.value(key());
    if (!stored)
        return;
    if (auto value = converted<T>(*stored))
        *this = std::move(*value);
}

template <class T> void Setting<T>::save(UserDefaults &defaults) const {
    if (auto value = encoded<T>(this->get()))
        defaults.set(key(), std::move(*value));
}

template class Setting<bool>;
template class Setting<int>;
template class Setting<double>;
template class Setting<QString>;
template class Setting<QStringList>;
template class Setting<PlannedBreaks>;

Settings::Settings(UserDefaults &defaults, MainLoop &loop) : defaults_(defaults), loop_(loop) {
    for (StoredSetting *setting : all_)
        setting->load(defaults_);
    saveOnChange_ = observe([this] { quietPeriod_ = loop_.after(quietPeriod, [this] { save(); }); });
}

QStringList Settings::defaultMessages() {
    return {QStringLiteral("Look 20 feet away for 20 seconds. Your eyes will thank you."),
            QStringLiteral("Drop your shoulders, tuck your chin back."),
            QStringLiteral("Take a deep breath and let it go."),
            QStringLiteral("Look out the window — find the farthest thing you can see."),
            QStringLiteral("Stand up and stretch a little.")};
}

void Settings::saveNow() {
    if (quietPeriod_)
        save();
}

void Settings::save() {
    quietPeriod_.reset();
    for (const StoredSetting *setting : all_)
        setting->save(defaults_);
}

} // namespace pavonel
