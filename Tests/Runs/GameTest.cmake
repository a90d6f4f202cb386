include_guard(DIRECTORY)

# varnholt_add_game_test(NAME SOURCES...): a test that plays with a whole game.
function(varnholt_add_game_test name)
  varnholt_add_test(${name} ${ARGN})
  target_link_libraries(tst_${name} PRIVATE Varnholt::TestGame)
endfunction()
