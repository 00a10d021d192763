# Checks a shipped program: cmake -DPROGRAM=... -DOBJDUMP=... -DLIMIT=BYTES -P CheckProgram.cmake
# It is smaller than LIMIT, stripped, protected as the compiler protects by default, and needs known DLLs alone.
cmake_minimum_required(VERSION 3.25)

# Windows keeps a list of "known DLLs", which it takes from its own folder; any other in the import table it takes from
# the program's folder if there is one of that name, before the program's first line. These are on the list of every
# Windows since Vista. Others are imported through SystemLibraries.cmake.
set(known_libraries
    advapi32.dll gdi32.dll kernel32.dll msvcrt.dll ole32.dll oleaut32.dll rpcrt4.dll shell32.dll user32.dll)

file(SIZE ${PROGRAM} size)
if(size GREATER_EQUAL LIMIT)
    message(SEND_ERROR "${PROGRAM} has ${size} bytes, ${LIMIT} are too many")
endif()

execute_process(COMMAND ${OBJDUMP} -p ${PROGRAM} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\r\n]+" imports "${headers}")
if(NOT imports)
    message(SEND_ERROR "no import was found: the check itself is broken")
endif()
foreach(import IN LISTS imports)
    string(REGEX REPLACE "DLL Name: " "" library "${import}")
    string(TOLOWER "${library}" library)
    if(NOT library IN_LIST known_libraries)
        message(SEND_ERROR "${PROGRAM} imports ${library}, which is no known DLL: see SystemLibraries.cmake")
    endif()
endforeach()
foreach(protection DYNAMIC_BASE HIGH_ENTROPY_VA NX_COMPAT)
    if(NOT headers MATCHES "${protection}")
        message(SEND_ERROR "${PROGRAM} lacks ${protection}")
    endif()
endforeach()

execute_process(COMMAND ${OBJDUMP} -h ${PROGRAM} OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
if(sections MATCHES "\\.debug_")
    message(SEND_ERROR "${PROGRAM} carries debug information")
endif()
execute_process(COMMAND ${OBJDUMP} -t ${PROGRAM} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES "no symbols")
    message(SEND_ERROR "${PROGRAM} is not stripped")
endif()
