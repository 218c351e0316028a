# DIALOG_SANITIZE: builds everything (libraries, tests, tools) with one
# sanitizer set, so that no uninstrumented code of ours hides a report.
#   ""       no sanitizer
#   address  AddressSanitizer (with LeakSanitizer) and UndefinedBehaviorSanitizer;
#            the first report ends the process
#   thread   ThreadSanitizer
# DIALOG_BUILD_FUZZERS adds libFuzzer's coverage instrumentation on top and
# implies "address" unless another value is given.
set(DIALOG_SANITIZE "" CACHE STRING "Sanitizers for the whole build: '', address or thread")
set_property(CACHE DIALOG_SANITIZE PROPERTY STRINGS "" address thread)

if(DIALOG_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "DIALOG_BUILD_FUZZERS needs clang (configure with CXX=clang++)")
  endif()
  if(DIALOG_SANITIZE STREQUAL "")
    set(DIALOG_SANITIZE address CACHE STRING "" FORCE)
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(DIALOG_SANITIZE STREQUAL "address")
  set(_dialog_sanitize_flags -fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(DIALOG_SANITIZE STREQUAL "thread")
  set(_dialog_sanitize_flags -fsanitize=thread)
elseif(NOT DIALOG_SANITIZE STREQUAL "")
  message(FATAL_ERROR "DIALOG_SANITIZE must be empty, 'address' or 'thread', not '${DIALOG_SANITIZE}'")
endif()

if(_dialog_sanitize_flags)
  # Frame pointers give the sanitizers' stack traces every frame cheaply.
  add_compile_options(${_dialog_sanitize_flags} -fno-omit-frame-pointer)
  add_link_options(${_dialog_sanitize_flags})
endif()
