# What a host gets from find_package(acg), and from add_subdirectory too: the target acg::acg, and the function below.
if(NOT TARGET acg::acg)
    include(${CMAKE_CURRENT_LIST_DIR}/acgTargets.cmake)
endif()

# acg_add_simulator(TARGET): puts the simulated reader library beside a program or shared library that links acg::acg,
# where it is looked for first. Called where TARGET is made.
function(acg_add_simulator target)
    add_dependencies(${target} acg::simulator)
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
        COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:acg::simulator> $<TARGET_FILE_DIR:${target}>)
endfunction()
