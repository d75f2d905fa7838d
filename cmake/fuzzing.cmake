# Fuzzers have the sanitizers built in: for clang alone, in a build folder of its own (see scripts/fuzz).
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "TARN_BUILD_FUZZERS needs clang, not ${CMAKE_CXX_COMPILER_ID}")
endif()
set(TARN_FUZZ_LINK_OPTIONS -fsanitize=address,undefined,float-cast-overflow)
set(TARN_FUZZ_COMPILE_OPTIONS
  ${TARN_FUZZ_LINK_OPTIONS} -fsanitize=fuzzer-no-link -fno-sanitize-recover=all -fno-omit-frame-pointer)
