#pragma once

namespace pavonel {

class BreakController;
class HotKeyManager;
class Phone;
class Settings;
class Stats;
class Updater;
struct Platform;

/// What the pages show and change. All of it outlives the settings window.
struct PageContext {
    Platform &platform;
    BreakController &controller;
    Settings &settings;
    Stats &stats;
    Phone &phone;
    HotKeyManager &hotKeys;
    Updater &updater;
};

} // namespace pavonel
