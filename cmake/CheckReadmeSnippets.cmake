# Fails when the README's usage snippet and the example it shows drift apart:
# every file named in FILES must appear verbatim in README.
file(READ ${README} readme)
string(REPLACE "^" ";" FILES "${FILES}")
foreach(snippet IN LISTS FILES)
  file(READ ${snippet} text)
  string(STRIP "${text}" text)
  string(FIND "${readme}" "${text}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "README.md no longer shows ${snippet} as it is")
  endif()
endforeach()
