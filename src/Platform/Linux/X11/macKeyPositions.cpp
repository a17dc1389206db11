#include "Platform/Linux/X11/macKeyPositions.h"

#include <algorithm>
#include <iterator>

namespace pavonel {

namespace {

struct Position {
    std::uint8_t macKeyCode;
    const char *xkbName;
};

// Rows of XKB names: AE digits, AD upper, AC home, AB lower; the digits count from the left.
// clang-format off
constexpr Position positions[] = {
    {0, "AC01"}, {1, "AC02"}, {2, "AC03"}, {3, "AC04"}, {4, "AC06"}, {5, "AC05"},
    {6, "AB01"}, {7, "AB02"}, {8, "AB03"}, {9, "AB04"}, {10, "LSGT"}, {11, "AB05"},
    {12, "AD01"}, {13, "AD02"}, {14, "AD03"}, {15, "AD04"}, {16, "AD06"}, {17, "AD05"},
    {18, "AE01"}, {19, "AE02"}, {20, "AE03"}, {21, "AE04"}, {22, "AE06"}, {23, "AE05"},
    {24, "AE12"}, {25, "AE09"}, {26, "AE07"}, {27, "AE11"}, {28, "AE08"}, {29, "AE10"},
    {30, "AD12"}, {31, "AD09"}, {32, "AD07"}, {33, "AD11"}, {34, "AD08"}, {35, "AD10"},
    {36, "RTRN"}, {37, "AC09"}, {38, "AC07"}, {39, "AC11"}, {40, "AC08"}, {41, "AC10"},
    {42, "BKSL"}, {43, "AB08"}, {44, "AB10"}, {45, "AB06"}, {46, "AB07"}, {47, "AB09"},
    {48, "TAB"}, {49, "SPCE"}, {50, "TLDE"}, {51, "BKSP"}, {53, "ESC"},
    // modifiers
    {54, "RWIN"}, {55, "LWIN"}, {56, "LFSH"}, {57, "CAPS"}, {58, "LALT"}, {59, "LCTL"},
    {60, "RTSH"}, {61, "RALT"}, {62, "RCTL"},
    // keypad
    {65, "KPDL"}, {67, "KPMU"}, {69, "KPAD"}, {71, "NMLK"}, {75, "KPDV"}, {76, "KPEN"}, {78, "KPSU"},
    {81, "KPEQ"}, {82, "KP0"}, {83, "KP1"}, {84, "KP2"}, {85, "KP3"}, {86, "KP4"}, {87, "KP5"},
    {88, "KP6"}, {89, "KP7"}, {91, "KP8"}, {92, "KP9"},
    // sound
    {72, "VOL+"}, {73, "VOL-"}, {74, "MUTE"},
    // Japanese keys
    {93, "AE13"}, {94, "AB11"}, {102, "MUHE"}, {104, "HENK"},
    // function keys
    {122, "FK01"}, {120, "FK02"}, {99, "FK03"}, {118, "FK04"}, {96, "FK05"}, {97, "FK06"}, {98, "FK07"},
    {100, "FK08"}, {101, "FK09"}, {109, "FK10"}, {103, "FK11"}, {111, "FK12"}, {105, "FK13"},
    {107, "FK14"}, {113, "FK15"}, {106, "FK16"}, {64, "FK17"}, {79, "FK18"}, {80, "FK19"}, {90, "FK20"},
    // the block between letters and keypad
    {110, "COMP"}, {114, "INS"}, {115, "HOME"}, {116, "PGUP"}, {117, "DELE"}, {119, "END"}, {121, "PGDN"},
    {123, "LEFT"}, {124, "RGHT"}, {125, "DOWN"}, {126, "UP"},
};
// clang-format on

} // namespace

const char *xkbNameOfMacKey(std::uint32_t macKeyCode) {
    const auto found =
        std::find_if(std::begin(positions), std::end(positions),
                     [&](const Position &position) { return position.macKeyCode == macKeyCode; });
    return found == std::end(positions) ? nullptr : found->xkbName;
}

} // namespace pavonel
