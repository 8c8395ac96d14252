# Ends with a reason where the program is known not to work. Anything else may be tried.
if(CMAKE_SIZEOF_VOID_P LESS 8)
    message(FATAL_ERROR
        "Torvo Quastle Bank Generator cannot be built for 32-bit systems: the draws that choose the samples "
        "multiply to 128 bits, and compilers have such integers for 64-bit systems only.")
endif()
