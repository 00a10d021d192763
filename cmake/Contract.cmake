# Compiles the automation contract: DriverAutomation.h for C++, DriverAutomation.tlb for servers.
set(contract_source ${PROJECT_SOURCE_DIR}/automation/DriverAutomation.idl)
set(contract_folder ${PROJECT_BINARY_DIR}/contract)
file(MAKE_DIRECTORY ${contract_folder})

if(MSVC AND CMAKE_HOST_WIN32)
    # It comes with the Windows SDK, as do the standard imports, and asks the compiler to preprocess.
    find_program(MIDL midl REQUIRED)
    cmake_path(NATIVE_PATH contract_source native_source)
    add_custom_command(
        OUTPUT ${contract_folder}/DriverAutomation.h ${contract_folder}/DriverAutomation.tlb
        COMMAND ${MIDL} /nologo /env x64 /h DriverAutomation.h /tlb DriverAutomation.tlb ${native_source}
        WORKING_DIRECTORY ${contract_folder}
        DEPENDS ${contract_source}
        COMMENT "Compiling the automation contract"
        VERBATIM)
else()
    find_program(WIDL NAMES x86_64-w64-mingw32-widl widl REQUIRED)
    if(CMAKE_HOST_WIN32)
        # MSYS2 has the standard .idl imports and stdole2.tlb among its headers.
        cmake_path(GET WIDL PARENT_PATH prefix)
        cmake_path(GET prefix PARENT_PATH prefix)
        set(folders -I ${prefix}/include -L ${prefix}/include)
    else()
        # Debian has them among Wine's development files; widl alone sees their folders.
        set(KEMBA_IDL_INCLUDE /usr/include/wine/wine/windows CACHE PATH "Folder of oaidl.idl")
        set(KEMBA_IDL_LIBRARY /usr/lib/x86_64-linux-gnu/wine/x86_64-windows CACHE PATH "Folder of stdole2.tlb")
        set(folders -I ${KEMBA_IDL_INCLUDE} -L ${KEMBA_IDL_LIBRARY})
        # widl writes the time of day into the type library, and so into kemba-dal.exe: the same source is to give the
        # same bytes.
        find_program(FAKETIME faketime REQUIRED)
        set(at_no_time ${CMAKE_COMMAND} -E env TZ=UTC ${FAKETIME} -f "2000-01-01 00:00:00")
    endif()
    add_custom_command(
        OUTPUT ${contract_folder}/DriverAutomation.h
        COMMAND ${WIDL} --win64 -h -H DriverAutomation.h ${folders} ${contract_source}
        WORKING_DIRECTORY ${contract_folder}
        DEPENDS ${contract_source}
        COMMENT "Compiling the automation contract (header)"
        VERBATIM)
    add_custom_command(
        OUTPUT ${contract_folder}/DriverAutomation.tlb
        COMMAND ${at_no_time} ${WIDL} --win64 -t -T DriverAutomation.tlb ${folders} ${contract_source}
        WORKING_DIRECTORY ${contract_folder}
        DEPENDS ${contract_source}
        COMMENT "Compiling the automation contract (type library)"
        VERBATIM)
endif()
add_custom_target(contract_files
    DEPENDS ${contract_folder}/DriverAutomation.h ${contract_folder}/DriverAutomation.tlb)

# What includes DriverAutomation.h links this; the generated header is kept out of our own warnings.
add_library(contract INTERFACE)
add_dependencies(contract contract_files)
target_include_directories(contract SYSTEM INTERFACE ${contract_folder})
target_link_libraries(contract INTERFACE ole32 oleaut32 uuid)
