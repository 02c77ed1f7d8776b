# tb_glob_sources(<out-var> <dir>...): the .cpp files directly inside each dir.
function(tb_glob_sources out)
  set(result)
  foreach(dir IN LISTS ARGN)
    file(GLOB found CONFIGURE_DEPENDS "${dir}/*.cpp")
    list(APPEND result ${found})
  endforeach()
  set(${out} ${result} PARENT_SCOPE)
endfunction()
