# What the compiler and the linker do against the exploiting of a fault, where the toolchain has it.
include(CheckCXXSourceCompiles)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

# Linked: the function that reports an overrun may be missing.
set(CMAKE_REQUIRED_FLAGS -fstack-protector-strong)
check_cxx_source_compiles("int main(int count, char**) { char text[99]; volatile char* last = text; \
last[count] = 0; return last[0]; }" TQ_HAVE_STACK_PROTECTOR)
unset(CMAKE_REQUIRED_FLAGS)

# The C library checks calls in optimised code only, and says so otherwise.
string(TOUPPER "${CMAKE_BUILD_TYPE}" buildType)
set(flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${buildType}}")
string(REGEX MATCHALL "-O[^ ]*" levels "${flags}")
set(TQ_IS_OPTIMISED OFF)
if(levels MATCHES "-O([1-9sz]|fast)?$")
    set(TQ_IS_OPTIMISED ON)
endif()

set(TQ_HARDENING)
if(TQ_HAVE_STACK_PROTECTOR)
    list(APPEND TQ_HARDENING -fstack-protector-strong)
endif()
if(TQ_IS_OPTIMISED AND NOT flags MATCHES "_FORTIFY_SOURCE")
    list(APPEND TQ_HARDENING -D_FORTIFY_SOURCE=2)
endif()
# Sanitizers see more, and replace the functions that would check.
if(flags MATCHES "-fsanitize")
    set(TQ_HARDENING)
endif()

function(tq_harden target)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE ${TQ_HARDENING})
    target_link_options(${target} PRIVATE
        -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endfunction()
