# Writes OUTPUT, a header with a stamp of everything that the program and its decoders have to agree on:
# the VERSION, the COMPILER and the headers in HEADERS, a folder.
file(GLOB_RECURSE headers RELATIVE "${HEADERS}" "${HEADERS}/*.h")
set(content "${VERSION} ${COMPILER}")
foreach(header IN LISTS headers)
    file(SHA256 "${HEADERS}/${header}" hash)
    string(APPEND content "\n${header} ${hash}")
endforeach()
string(SHA256 stamp "${content}")
file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT "#pragma once

#define TORVO_BUILD_STAMP \"@VERSION@ @stamp@\"
" @ONLY)
