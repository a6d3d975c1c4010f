# What limits the damage of a memory error; Tests/hardening looks for it in the built program.
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
add_compile_options(-fstack-protector-strong)
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)

if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  add_compile_options(-fcf-protection)
endif()

# The checks of buffer sizes need an optimising compiler; level 3 needs GCC 12, and glibc warns where it isn't known.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
  set(fortification 3)
else()
  set(fortification 2)
endif()
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${fortification}>")
