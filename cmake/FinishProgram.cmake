# What an executable that is handed out becomes after it is linked: its line numbers move into FILE.debug beside
# it, which turns the addresses of a dump into lines of the source, and it is sealed for the integrity check.
set(kelvara_seal_script ${CMAKE_CURRENT_LIST_DIR}/SealProgram.cmake)
set(kelvara_seal_header ${PROJECT_SOURCE_DIR}/src/platform/integrity_seal.h)

function(kelvara_finish_program target)
  set(program $<TARGET_FILE:${target}>)
  # Without objcopy they stay in the program. Sanitizers follow its link to the file; what they build is so
  # large with them that every start of the program would hash for half a second.
  if(KELVARA_LINE_NUMBERS AND CMAKE_OBJCOPY)
    list(APPEND commands
         COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${program} ${program}.debug
         COMMAND ${CMAKE_OBJCOPY} --strip-debug --add-gnu-debuglink=${program}.debug ${program})
  endif()
  list(APPEND commands
       COMMAND ${CMAKE_COMMAND} -DPROGRAM=${program} -DSEAL_HEADER=${kelvara_seal_header} -P ${kelvara_seal_script})
  add_custom_command(TARGET ${target} POST_BUILD ${commands} VERBATIM)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${kelvara_seal_script} ${kelvara_seal_header})
endfunction()
