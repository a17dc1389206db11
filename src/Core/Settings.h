#pragma once

#include "Core/Observable.h"
#include "Core/PlannedBreak.h"
#include "Platform/MainLoop.h"
#include "Platform/UserDefaults.h"

#include <QStringList>

namespace pavonel {

class Settings;

/// One preference, whatever its type, on its way from and to the store.
class StoredSetting {
public:
    StoredSetting(Settings &settings, const char *key);
    StoredSetting(const StoredSetting &) = delete;
    StoredSetting &operator=(const StoredSetting &) = delete;

    const QString &key() const { return key_; }
    virtual void load(const UserDefaults &defaults) = 0;
    virtual void save(UserDefaults &defaults) const = 0;

protected:
    ~StoredSetting() = default;

private:
    QString key_;
};

/// A preference that is observable and kept under its name. What the store holds under the key is taken as it
/// is, without a check of its range; a value of another type counts as missing and yields the default.
template <class T> class Setting final : public Published<T>, public StoredSetting {
public:
    Setting(Settings &settings, const char *key, T defaultValue);
    using Published<T>::operator=;

    void load(const UserDefaults &defaults) override;
    void save(UserDefaults &defaults) const override;
};

/// Every preference of the user. A change is live at its next read and reaches the store after 150 ms without
/// a further change.
class Settings final : public Observable {
    std::vector<StoredSetting *> all_;

public:
    Settings(UserDefaults &defaults, MainLoop &loop);

    static Settings &shared();

    Setting<bool> microEnabled{*this, "microEnabled", true};
    Setting<double> microInterval{*this, "microInterval", 1200};
    Setting<double> microDuration{*this, "microDuration", 20};
    Setting<PlannedBreaks> plannedBreaks{*this, "plannedBreaks", {}};
    Setting<bool> longEnabled{*this, "longEnabled", true};
    Setting<double> longInterval{*this, "longInterval", 3600};
    Setting<double> longDuration{*this, "longDuration", 300};
    Setting<double> preNotifySeconds{*this, "preNotifySeconds", 30};
    Setting<bool> showFloatingCountdown{*this, "showFloatingCountdown", true};
    Setting<int> countdownBeforeStart{*this, "countdownBeforeStart", 3};
    Setting<bool> allowSkip{*this, "allowSkip", true};
    Setting<bool> allowPostpone{*this, "allowPostpone", true};
    Setting<bool> strictMode{*this, "strictMode", false};
    Setting<bool> naturalBreakEnabled{*this, "naturalBreakEnabled", true};
    Setting<double> idleResetSeconds{*this, "idleResetSeconds", 60};
    Setting<bool> pauseOnFullscreen{*this, "pauseOnFullscreen", true};
    Setting<bool> pauseOnAudio{*this, "pauseOnAudio", false};
    Setting<bool> pauseOnMicrophone{*this, "pauseOnMicrophone", true};
    Setting<bool> pauseOnScreenSharing{*this, "pauseOnScreenSharing", true};
    Setting<QStringList> deepFocusApps{*this, "deepFocusApps", {}};
    Setting<bool> soundEnabled{*this, "soundEnabled", true};
    Setting<QString> startSound{*this, "startSound", QStringLiteral("Submarine")};
    Setting<QString> endSound{*this, "endSound", QStringLiteral("Glass")};
    Setting<int> backgroundStyle{*this, "backgroundStyle", 0};
    Setting<QString> customBackgroundPath{*this, "customBackgroundPath", {}};
    Setting<QStringList> messages{*this, "messages", defaultMessages()};
    Setting<bool> showSkipCountdownRing{*this, "showSkipCountdownRing", true};
    Setting<bool> postureEnabled{*this, "postureEnabled", true};
    Setting<double> postureInterval{*this, "postureInterval", 1800};
    Setting<bool> blinkEnabled{*this, "blinkEnabled", false};
    Setting<double> blinkInterval{*this, "blinkInterval", 600};
    Setting<QString> onBreakStartScript{*this, "onBreakStartScript", {}};
    Setting<QString> onBreakEndScript{*this, "onBreakEndScript", {}};
    Setting<bool> launchAtLogin{*this, "launchAtLogin", true};
    Setting<bool> hotKeysEnabled{*this, "hotKeysEnabled", true};

    /// A break may be cut short or passed over by the user.
    bool isSkipPermitted() const { return allowSkip && !strictMode; }
    /// A coming break may be put off by the user.
    bool isPostponePermitted() const { return allowPostpone && !strictMode; }

    /// In declaration order.
    const std::vector<StoredSetting *> &all() const { return all_; }

    static QStringList defaultMessages();

    /// Hands a change that still waits for its quiet period to the store at once; for the end of the program.
    void saveNow();

private:
    friend class StoredSetting;

    void save();

    UserDefaults &defaults_;
    MainLoop &loop_;
    TimerHandle quietPeriod_;
    Observation saveOnChange_;
};

} // namespace pavonel
