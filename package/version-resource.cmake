# add_version_resource(TARGET FILE DESCRIPTION [TYPE_LIBRARY]): what Explorer shows of a file for Windows. A file with
# a type library registers itself.
function(add_version_resource target file description)
    cmake_path(GET file STEM name)
    if(file MATCHES "exe$")
        set(file_type VFT_APP)
    else()
        set(file_type VFT_DLL)
    endif()
    if(ARGN)
        set(type_library "1 TYPELIB \"${ARGN}\"")
        set(self_registration "VALUE \"OLESelfRegister\", \"\"")
    endif()
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target})
    configure_file(${PROJECT_SOURCE_DIR}/package/version-resource.rc.in ${resource}.rc @ONLY)
    add_custom_command(OUTPUT ${resource}.o COMMAND ${CMAKE_RC_COMPILER} ${resource}.rc ${resource}.o
                       DEPENDS ${resource}.rc ${ARGN} VERBATIM)
    target_sources(${target} PRIVATE ${resource}.o)
endfunction()
