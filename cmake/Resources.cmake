# The program's resources as an object library: kemba.exe carries them, and so do the test programs.
configure_file(${PROJECT_SOURCE_DIR}/resources/Version.h.in ${PROJECT_BINARY_DIR}/resources/Version.h @ONLY)

add_library(kemba_resources OBJECT ${PROJECT_SOURCE_DIR}/resources/kemba.rc)
target_include_directories(kemba_resources PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/resources)
# CMake does not see which files a resource script names.
set(kemba_resource_files
    ${PROJECT_SOURCE_DIR}/resources/kemba.manifest
    "${PROJECT_SOURCE_DIR}/messages/KEMBA[ENU].TXT"
    ${PROJECT_BINARY_DIR}/resources/Version.h)
set_source_files_properties(${PROJECT_SOURCE_DIR}/resources/kemba.rc PROPERTIES
    OBJECT_DEPENDS "${kemba_resource_files}")
