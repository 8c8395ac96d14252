# One interface target carries the language level, the warnings, the sanitizers and the hardening; every
# target of the project links it. Three variables stand beside it: what no interface target can carry.
add_library(TorvoOptions INTERFACE)
target_compile_features(TorvoOptions INTERFACE cxx_std_20)
target_compile_options(TorvoOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wimplicit-fallthrough
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # false alarms on std::string in GCC 12 (its bug 105651)
    $<$<BOOL:${TORVO_WARNINGS_AS_ERRORS}>:-Werror>
    # A fused multiply-add rounds once: where processors have one (arm64), samples would differ by a bit.
    -ffp-contract=off)
# The 128-bit product of the bounded draw is the only extension in use.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# A build without a type would not be optimised, and what is not optimised is not fortified either.
get_property(has_many_types GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(NOT has_many_types AND NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "The kind of build" FORCE)
endif()

if(TORVO_SANITIZE)
    target_compile_options(TorvoOptions INTERFACE
        -fsanitize=${TORVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
        # GCC's manual: sanitizers make this warning fire on code that is right.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(TorvoOptions INTERFACE -fsanitize=${TORVO_SANITIZE})
elseif(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    # The distribution's hardening: position independent, full RELRO, fortified, stack protected.
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    target_compile_options(TorvoOptions INTERFACE
        -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    target_link_options(TorvoOptions INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,--as-needed)
endif()
if(TORVO_COVERAGE)
    target_link_options(TorvoOptions INTERFACE --coverage)
endif()
