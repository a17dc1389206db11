#pragma once

namespace pavonel {

class Applications;
class AudioDevices;
class IdleTime;
class Screens;
class WindowList;

/// What tells of the user and of other programs.
struct SensorServices {
    IdleTime &idleTime;
    AudioDevices &audioDevices;
    Applications &applications;
    WindowList &windowList;
    Screens &screens;
};

} // namespace pavonel
