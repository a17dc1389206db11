# Platform services on Linux; included by src/CMakeLists.txt, from where paths count. Each library is optional at run time too: its adapter says why it cannot work.
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-screensaver xcb-sync xcb-keysyms xcb-xkb xcb-shape xcb-res xcb-icccm)
pkg_check_modules(PULSE REQUIRED libpulse) # of these two only the headers: they are loaded when first needed
pkg_check_modules(PIPEWIRE REQUIRED libpipewire-0.3)

# Descriptions of protocols, as far as we use them.
file(GLOB protocols CONFIGURE_DEPENDS Platform/Linux/Wayland/protocols/*.xml)
pavonel_protocols(pavonel_wayland ${protocols})

pavonel_room(pavonel_platform Platform/Qt Platform/Posix Platform/Linux)
target_link_libraries(pavonel_platform PUBLIC pavonel_seam Qt6::Gui
                      PRIVATE Qt6::Widgets Qt6::GuiPrivate Qt6::DBus
                              PkgConfig::XCB pavonel_wayland)
target_include_directories(pavonel_platform SYSTEM PRIVATE ${PULSE_INCLUDE_DIRS} ${PIPEWIRE_INCLUDE_DIRS})
target_precompile_headers(pavonel_platform PRIVATE UI/precompiled.h)
