# Appends the seal that src/platform/integrity_seal.h describes to an executable that was just linked:
#   cmake -DPROGRAM=FILE -DSEAL_HEADER=src/platform/integrity_seal.h -P SealProgram.cmake
# A file that carries a seal already is an error: its content is what was sealed, not what the linker wrote.
foreach(name IN ITEMS mark key)
  file(STRINGS "${SEAL_HEADER}" line REGEX "seal_${name} = \"")
  string(REGEX REPLACE ".*\"(.*)\".*" "\\1" seal_${name} "${line}")
  if(NOT seal_${name})
    message(FATAL_ERROR "${SEAL_HEADER} names no seal_${name}")
  endif()
endforeach()

string(LENGTH "${seal_mark}" mark_size)
math(EXPR seal_size "${mark_size} + 64")
file(SIZE "${PROGRAM}" size)
if(size GREATER seal_size)
  math(EXPR content_size "${size} - ${seal_size}")
  # In hexadecimal: what is no seal is no text either.
  file(READ "${PROGRAM}" end_of_file OFFSET ${content_size} HEX)
  string(HEX "${seal_mark}" mark_in_hexadecimal)
  string(FIND "${end_of_file}" "${mark_in_hexadecimal}" position)
  if(position EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} is sealed already; link it again.")
  endif()
endif()

file(SHA256 "${PROGRAM}" content_digest)
string(SHA256 keyed_digest "${seal_key}${content_digest}")
# No line end, which some systems would write as two bytes.
file(APPEND "${PROGRAM}" "${seal_mark}${keyed_digest}")
