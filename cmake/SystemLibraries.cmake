# System libraries that Windows looks for beside the program first: all but the "known DLLs". Programs that ship import
# them through these targets, which load them at the first call by way of core/SystemLibraries.cpp.

# kemba_system_library(TARGET LIBRARY FILE): TARGET offers the calls of the import library of LIBRARY, out of the
# system's FILE.
function(kemba_system_library target library file)
    add_library(${target} INTERFACE)
    if(MSVC)
        target_link_libraries(${target} INTERFACE ${library} delayimp)
        target_link_options(${target} INTERFACE /DELAYLOAD:${file})
        return()
    endif()
    find_library(KEMBA_IMPORTS_OF_${library} ${library} REQUIRED)
    execute_process(COMMAND ${CMAKE_NM} --defined-only ${KEMBA_IMPORTS_OF_${library}}
        OUTPUT_VARIABLE symbols ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL " T [A-Za-z0-9_]+" calls "${symbols}")
    list(TRANSFORM calls REPLACE "^ T " "")
    list(JOIN calls "\n" calls)
    set(folder ${PROJECT_BINARY_DIR}/system)
    file(CONFIGURE OUTPUT ${folder}/${library}.def CONTENT "LIBRARY ${file}\nEXPORTS\n${calls}\n" @ONLY)
    add_custom_command(
        OUTPUT ${folder}/lib${target}.a
        COMMAND ${CMAKE_DLLTOOL} -m i386:x86-64 -d ${library}.def --output-delaylib lib${target}.a
        WORKING_DIRECTORY ${folder}
        DEPENDS ${folder}/${library}.def
        COMMENT "Making the delayed imports of ${file}"
        VERBATIM)
    add_custom_target(${target}_file DEPENDS ${folder}/lib${target}.a)
    add_dependencies(${target} ${target}_file)
    target_link_libraries(${target} INTERFACE ${folder}/lib${target}.a)
endfunction()

kemba_system_library(system_oleaut32 oleaut32 OLEAUT32.dll) # a known DLL: for the sake of a quick start
kemba_system_library(system_version version VERSION.dll)
kemba_system_library(system_winspool winspool WINSPOOL.DRV)
