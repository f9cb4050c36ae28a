# Warnings for Ostrel's own targets. Consumers of the installed package never see these flags.
function(ostrel_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                            -Wold-style-cast -Wcast-align -Woverloaded-virtual)
  if(OSTREL_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
