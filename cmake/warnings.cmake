# The warnings that our own code is held to. Errors only where we develop (presets), never for users.
add_library(tarn_warnings INTERFACE)
if(MSVC)
  target_compile_options(tarn_warnings INTERFACE /W4 $<$<BOOL:${TARN_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(tarn_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wdouble-promotion
    $<$<BOOL:${TARN_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
