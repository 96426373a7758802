# Included behind project() by scripts/matrix: compiles the libraries with TQ_LIBRARY_OPTIONS, behind
# the flags of the build, and links what uses them with TQ_LIBRARY_LINK_OPTIONS. The tests stay as
# they are, and are not compiled anew.
function(tq_library_options)
    foreach(library tqcommon tqcomfort)
        target_compile_options(${library} PRIVATE ${TQ_LIBRARY_OPTIONS})
        target_link_options(${library} PUBLIC ${TQ_LIBRARY_LINK_OPTIONS})
    endforeach()
endfunction()
cmake_language(DEFER CALL tq_library_options)
