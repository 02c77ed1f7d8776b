# Warning flags for our own targets (never for third-party code).
function(tb_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow=local
                                           -Wnon-virtual-dtor -Wimplicit-fallthrough)
  if(TB_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
