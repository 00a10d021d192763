# The same target compiled with clang, against the headers and libraries of the mingw-w64 GCC.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64.cmake)
set(gcc ${CMAKE_CXX_COMPILER})
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
foreach(tool AR DLLTOOL NM OBJDUMP RANLIB)
    string(TOLOWER ${tool} name)
    set(CMAKE_${tool} x86_64-w64-mingw32-${name})
endforeach()

# Clang does not find these by itself, and warns of what the library's own templates use.
execute_process(COMMAND ${gcc} -print-libgcc-file-name
    OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
cmake_path(GET libgcc PARENT_PATH gcc_folder)
set(gcc_headers ${gcc_folder}/include/c++)
string(JOIN " " CMAKE_CXX_FLAGS_INIT -femulated-tls -Wno-deprecated-declarations
    -isystem ${gcc_headers} -isystem ${gcc_headers}/x86_64-w64-mingw32 -isystem ${gcc_headers}/backward)
foreach(kind EXE MODULE SHARED)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -pthread -L${gcc_folder}")
endforeach()
