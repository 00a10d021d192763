# What every target is compiled with; linked as kemba_options.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

add_library(kemba_options INTERFACE)
target_include_directories(kemba_options INTERFACE ${PROJECT_SOURCE_DIR})
# The oldest system served is Windows Vista.
target_compile_definitions(kemba_options INTERFACE
    _WIN32_WINNT=0x0600 UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT)

# What starts at wmain links this as well.
add_library(kemba_wmain INTERFACE)

if(MSVC)
    set(CMAKE_MSVC_RUNTIME_LIBRARY MultiThreaded$<$<CONFIG:Debug>:Debug>) # in the program, as with mingw-w64
    target_compile_options(kemba_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:
        /W4 /WX /wd4996 # calls that the system's headers advise against: GetVersionExW has the whole record
        /permissive- /utf-8 /volatile:iso /Zc:__cplusplus /Zc:inline /guard:cf /sdl
        $<$<CONFIG:Release>:/Gw /Gy /Brepro>>)
    # The manifest is one of the resources. That a library is not called is no mistake of a program that may call it.
    target_link_options(kemba_options INTERFACE
        /WX /MANIFEST:NO /INCREMENTAL:NO /IGNORE:4199 /guard:cf
        $<$<CONFIG:Release>:/Brepro /OPT:REF /OPT:ICF>)
    target_link_options(kemba_wmain INTERFACE /ENTRY:wmainCRTStartup)
    return()
endif()

target_compile_options(kemba_options INTERFACE
    -Wall -Wextra -Werror -Wpedantic -Wshadow -Wconversion
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion> # for C++, GCC's -Wconversion goes without
    # Paths of the building machine, and data that nobody uses, stay out of what ships. Sections for functions would
    # only make it larger, for the linker keeps what has unwind tables; so would what ipa-sra makes of a template,
    # other functions in each file, which the linker cannot merge.
    $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -fdata-sections
        -fstack-protector-strong $<$<CXX_COMPILER_ID:GNU>:-fno-ipa-sra>>
    $<$<CONFIG:Debug>:-D_GLIBCXX_ASSERTIONS -fsanitize=undefined -fsanitize-undefined-trap-on-error>)
target_link_options(kemba_options INTERFACE
    -Wl,--no-insert-timestamp
    $<$<CONFIG:Debug>:-fsanitize=undefined -fsanitize-undefined-trap-on-error>
    $<$<CONFIG:Release>:-Wl,--gc-sections -s>)
# What -fstack-protector-strong refers to.
target_link_libraries(kemba_options INTERFACE $<$<CONFIG:Release>:kemba_stack_guard>)
target_link_options(kemba_wmain INTERFACE -municode)
