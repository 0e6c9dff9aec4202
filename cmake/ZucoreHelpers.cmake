# Sanitizers apply to every target of the build, the library and its tests alike.
function(zucore_apply_sanitizers)
  if(NOT ZUCORE_SANITIZE)
    return()
  endif()
  set(flags -fsanitize=${ZUCORE_SANITIZE} -fno-omit-frame-pointer)
  if(ZUCORE_SANITIZE MATCHES "undefined")
    list(APPEND flags -fno-sanitize-recover=undefined)
  endif()
  add_compile_options(${flags})
  add_link_options(-fsanitize=${ZUCORE_SANITIZE})
endfunction()

# Warnings for the project's own targets; Qt's headers come in as system headers.
function(zucore_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
