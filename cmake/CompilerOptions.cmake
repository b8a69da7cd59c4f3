# Options shared by every target: warnings, sanitizers, and what each system needs.
add_library(kelvara_options INTERFACE)

# Floating-point expressions keep their written rounding: a fused multiply-add appears only where a
# kernel asks for it, so that plans computed in double precision agree between compilers and levels.
target_compile_options(kelvara_options INTERFACE -Wall -Wextra -Wshadow -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 reports overlapping copies inside std::string for every "literal" + std::string().
  target_compile_options(kelvara_options INTERFACE -Wno-restrict)
endif()
if(KELVARA_WARNINGS_AS_ERRORS)
  target_compile_options(kelvara_options INTERFACE -Werror)
endif()

# Line numbers turn the addresses of a dump into lines of the source; they change no code.
if(KELVARA_LINE_NUMBERS AND NOT KELVARA_SANITIZE)
  target_compile_options(kelvara_options INTERFACE -g1)
endif()

# Targets made where the variable KELVARA_TEST_CODE is on are tests.
define_property(TARGET PROPERTY KELVARA_TEST_CODE INITIALIZE_FROM_VARIABLE KELVARA_TEST_CODE)

if(KELVARA_SANITIZE)
  # The sanitizers look at what is tested. The tests' own code, which takes them most of the build, goes with
  # less: little optimisation, no checks of undefined behaviour, and warnings as the other builds see them.
  # Their reports need lines, not variables.
  set(kelvara_is_test "$<BOOL:$<TARGET_PROPERTY:KELVARA_TEST_CODE>>")
  target_compile_options(kelvara_options INTERFACE
    -fsanitize=${KELVARA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1
    "$<${kelvara_is_test}:-O1;-fno-sanitize=undefined;-Wno-error>")
  target_link_options(kelvara_options INTERFACE -fsanitize=${KELVARA_SANITIZE})
endif()

if(WIN32)
  # GCC aligns no 32- and 64-byte stack slots on this system: vector moves must tolerate that.
  target_compile_options(kelvara_options INTERFACE -Wa,-muse-unaligned-vector-move)
  target_compile_definitions(kelvara_options INTERFACE UNICODE _UNICODE _WIN32_WINNT=0x0A00 NOMINMAX
    WIN32_LEAN_AND_MEAN)
  target_link_options(kelvara_options INTERFACE -static -static-libgcc -static-libstdc++)
endif()
