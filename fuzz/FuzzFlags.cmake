# Flags of a fuzzing build: every library of the build is compiled by clang
# with libFuzzer's coverage instrumentation and the address and undefined-
# behaviour sanitizers, so the harnesses in fuzz/ see every branch of the
# parsers. Use a build directory of its own:
#
#   cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
#         -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVARNEL_BUILD_FUZZ=ON \
#         -DVARNEL_BUILD_TESTS=OFF -DVARNEL_BUILD_APPS=OFF
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "VARNEL_BUILD_FUZZ needs clang (libFuzzer): configure with -DCMAKE_CXX_COMPILER=clang++")
endif()
if(VARNEL_SANITIZE)
  message(FATAL_ERROR "VARNEL_BUILD_FUZZ brings its own sanitizers: configure with -DVARNEL_SANITIZE=OFF")
endif()

add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
                    -fno-sanitize-recover=all
                    "SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/compat/source_location.h")
add_link_options(-fsanitize=address,undefined)
