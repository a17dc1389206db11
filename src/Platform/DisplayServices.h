#pragma once

namespace pavonel {

class Appearance;
class MainLoop;
class Screens;
class WindowLayers;

/// What windows of ours need: where they can stand, how they come above others, which colours the user wishes
/// for, and time to move in.
struct DisplayServices {
    MainLoop &loop;
    Screens &screens;
    WindowLayers &layers;
    Appearance &appearance;
};

} // namespace pavonel
