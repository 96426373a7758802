# Many an x86 processor fetches code in pieces of 32 or 64 bytes, and takes the slow way through a
# jump at the end of one: where code happens to come to lie decides how fast a short loop is, by as
# much as a quarter, and every other change moves it. With these it is the same from build to build.
# The device's processor has no such trap, and there room counts.
include(CheckCXXCompilerFlag)
set(steadyLayout -Wa,-mbranches-within-32B-boundaries -falign-functions=64 -falign-loops=32)
set(TQ_HAS_STEADY_LAYOUT OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$" AND TQ_IS_OPTIMISED)
    check_cxx_compiler_flag("${steadyLayout}" TQ_TAKES_STEADY_LAYOUT)
    set(TQ_HAS_STEADY_LAYOUT ${TQ_TAKES_STEADY_LAYOUT})
endif()

function(tq_lay_out_steadily target)
    if(TQ_HAS_STEADY_LAYOUT)
        target_compile_options(${target} PRIVATE ${steadyLayout})
    endif()
endfunction()
