# Compiles the automation contract: DriverAutomation.h for C++, DriverAutomation.tlb for servers.
# The standard .idl imports and stdole2.tlb come with Wine's development files; widl alone sees their folders.
find_program(WIDL NAMES x86_64-w64-mingw32-widl widl REQUIRED)
set(KEMBA_IDL_INCLUDE /usr/include/wine/wine/windows CACHE PATH "Folder of oaidl.idl")
set(KEMBA_IDL_LIBRARY /usr/lib/x86_64-linux-gnu/wine/x86_64-windows CACHE PATH "Folder of stdole2.tlb")

# widl writes the time of day into the type library, and so into kemba-dal.exe: the same source is to give the same
# bytes.
if(NOT CMAKE_HOST_WIN32)
    find_program(FAKETIME faketime REQUIRED)
    set(at_no_time ${CMAKE_COMMAND} -E env TZ=UTC ${FAKETIME} -f "2000-01-01 00:00:00")
endif()

set(contract_source ${PROJECT_SOURCE_DIR}/automation/DriverAutomation.idl)
set(contract_folder ${PROJECT_BINARY_DIR}/contract)
file(MAKE_DIRECTORY ${contract_folder})

add_custom_command(
    OUTPUT ${contract_folder}/DriverAutomation.h
    COMMAND ${WIDL} --win64 -h -H DriverAutomation.h -I ${KEMBA_IDL_INCLUDE} -L ${KEMBA_IDL_LIBRARY} ${contract_source}
    WORKING_DIRECTORY ${contract_folder}
    DEPENDS ${contract_source}
    COMMENT "Compiling the automation contract (header)"
    VERBATIM)
add_custom_command(
    OUTPUT ${contract_folder}/DriverAutomation.tlb
    COMMAND ${at_no_time} ${WIDL} --win64 -t -T DriverAutomation.tlb -I ${KEMBA_IDL_INCLUDE} -L ${KEMBA_IDL_LIBRARY}
        ${contract_source}
    WORKING_DIRECTORY ${contract_folder}
    DEPENDS ${contract_source}
    COMMENT "Compiling the automation contract (type library)"
    VERBATIM)
add_custom_target(contract_files
    DEPENDS ${contract_folder}/DriverAutomation.h ${contract_folder}/DriverAutomation.tlb)

# What includes DriverAutomation.h links this; the generated header is kept out of our own warnings.
add_library(contract INTERFACE)
add_dependencies(contract contract_files)
target_include_directories(contract SYSTEM INTERFACE ${contract_folder})
target_link_libraries(contract INTERFACE ole32 oleaut32 uuid)
