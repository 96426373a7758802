# tq_install_tool(name): installs a program of tools/, its manual page and its completions for shells,
# which lie beside it: name.1, name.bash, name.zsh, name.fish.
set(TQ_ZSH_COMPLETIONS_DIR "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" CACHE STRING
    "Where zsh looks for completions")
find_program(groff groff)

function(tq_install_tool name)
    # Relative to itself, so that the installed tree can be moved.
    file(RELATIVE_PATH libraryFolder
        "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraryFolder}")
    install(TARGETS ${name} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    install(FILES ${name}.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    install(FILES ${name}.bash RENAME ${name}
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
    install(FILES ${name}.zsh RENAME _${name} DESTINATION "${TQ_ZSH_COMPLETIONS_DIR}")
    install(FILES ${name}.fish DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")

    # The manual formats without a warning.
    if(TQ_BUILD_TESTS AND groff)
        add_test(NAME ${name}.manual
            COMMAND ${groff} -man -ww -Tascii -z ${CMAKE_CURRENT_SOURCE_DIR}/${name}.1)
        set_tests_properties(${name}.manual PROPERTIES FAIL_REGULAR_EXPRESSION ".")
    endif()
    if(TQ_BUILD_TESTS AND NOT CMAKE_CROSSCOMPILING)
        add_test(NAME ${name}.completion
            COMMAND ${PROJECT_SOURCE_DIR}/tests/scripts/completes.sh
                ${CMAKE_CURRENT_SOURCE_DIR}/${name} $<TARGET_FILE:${name}>)
        set_tests_properties(${name}.completion PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 60)
    endif()
endfunction()
