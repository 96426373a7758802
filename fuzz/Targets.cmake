# The programs that look for inputs, and those that show that they would find one: the same, linked
# with a source that has one fault.
foreach(source IN LISTS targetSources)
    get_filename_component(target "${source}" NAME_WE)
    add_library(fuzz_target_${target} OBJECT ${source})
    tq_fuzz_program(fuzz_target_${target})
    add_executable(fuzz_${target} fuzzer.cpp $<TARGET_OBJECTS:fuzz_target_${target}>)
    tq_fuzz_program(fuzz_${target})
    target_link_options(fuzz_${target} PRIVATE -fsanitize=fuzzer)
    add_test(NAME fuzz.${target} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/short.sh ${target}
        $<TARGET_FILE:fuzz_${target}>)
    set_tests_properties(fuzz.${target} PROPERTIES TIMEOUT 300)
endforeach()

# tq_planted(target source script): the target with the source changed by a script of sed, which
# must change it. The fault is looked for with every change of the library in the targets of
# `quickly`, and in all of them by `scripts/fuzz planted`.
set(quickly strings tftp)
function(tq_planted target source script)
    get_filename_component(name ${source} NAME)
    set(changed ${CMAKE_CURRENT_BINARY_DIR}/planted/${target}/${name})
    add_custom_command(OUTPUT ${changed}
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/plant.sh ${PROJECT_SOURCE_DIR}/${source} "${script}"
            ${changed}
        DEPENDS ${PROJECT_SOURCE_DIR}/${source} plant.sh Targets.cmake
        VERBATIM)
    set(program fuzz_planted_${target})
    add_executable(${program} fuzzer.cpp $<TARGET_OBJECTS:fuzz_target_${target}> ${changed})
    tq_fuzz_program(${program})
    get_filename_component(folder ${PROJECT_SOURCE_DIR}/${source} DIRECTORY)
    target_include_directories(${program} PRIVATE ${folder})
    # A fault may leave something unused.
    target_compile_options(${program} PRIVATE -w)
    target_link_options(${program} PRIVATE -fsanitize=fuzzer)
    if(target IN_LIST quickly)
        add_test(NAME fuzz.planted.${target} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/planted.sh
            ${target} $<TARGET_FILE:${program}>)
        set_tests_properties(fuzz.planted.${target} PROPERTIES TIMEOUT 300)
    else()
        set_target_properties(${program} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
endfunction()

include(Planted.cmake)
