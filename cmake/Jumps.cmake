# Processors on many a developer's desk take the slow way through a jump that crosses or ends at a
# border of 32 bytes: what else is changed decides then how fast a loop is, by as much as a quarter.
# The assembler keeps jumps away from there. The device's processor has no such trap.
include(CheckCXXCompilerFlag)
set(jumpsInside -Wa,-mbranches-within-32B-boundaries)
set(TQ_HAVE_JUMPS_INSIDE OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
    check_cxx_compiler_flag(${jumpsInside} TQ_TAKES_JUMPS_INSIDE)
    set(TQ_HAVE_JUMPS_INSIDE ${TQ_TAKES_JUMPS_INSIDE})
endif()

function(tq_keep_jumps_inside target)
    if(TQ_HAVE_JUMPS_INSIDE)
        target_compile_options(${target} PRIVATE ${jumpsInside})
    endif()
endfunction()
