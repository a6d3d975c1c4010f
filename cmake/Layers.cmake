# The build keeps the layers: what may include what. Debian's headers share one include path, so a target's
# own include directories can't keep it from another library's headers; each compilation in a layer is
# checked instead, by the list of headers that the compiler says it read.

set(layer_system_headers "/(qt6|X11|xcb|speech-dispatcher|tesseract|leptonica|ZXing|dbus-1.0|cairo|fontconfig|systemd)/")
set(layer_program_headers "Sources/(app|capture|recognition|output|hotkeys|settings|selftest)/")
set(layer_linux_headers "Sources/platform/linux/")
set(layer_portable_libraries "/(nlohmann|unicode)/")

# lumiscan_layer(TARGET REGEX...): compiling TARGET fails when it reads a header whose path matches one.
function(lumiscan_layer target)
  list(JOIN ARGN "|" forbidden)
  set_target_properties(${target} PROPERTIES
    CXX_COMPILER_LAUNCHER "${PROJECT_SOURCE_DIR}/cmake/compile-in-layer;${forbidden}")
endfunction()
