# The warnings under which everything here compiles, with every compiler.
set(TQ_WARNINGS
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wundef -Wextra-semi -Wformat=2 -Wno-format-nonliteral)
set(TQ_WARNINGS_GNU -Wsuggest-override -Wlogical-op -Wduplicated-cond)

function(tq_warnings target)
    target_compile_options(${target} PRIVATE ${TQ_WARNINGS}
        ${TQ_WARNINGS_${CMAKE_CXX_COMPILER_ID}} $<$<BOOL:${TQ_WERROR}>:-Werror>)
endfunction()
