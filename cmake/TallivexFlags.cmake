# Common compile options, carried by one INTERFACE target that every target links.
add_library(tallivex_flags INTERFACE)
target_compile_features(tallivex_flags INTERFACE cxx_std_20)
target_compile_options(tallivex_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wold-style-cast
  $<$<BOOL:${TALLIVEX_WERROR}>:-Werror>)

# Qt targets additionally forbid implicit conversions from char* to QString, so every
# user-visible text goes through an explicit, UTF-8 aware conversion.
add_library(tallivex_qt_flags INTERFACE)
target_link_libraries(tallivex_qt_flags INTERFACE tallivex_flags)
target_compile_definitions(tallivex_qt_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING QT_USE_QSTRINGBUILDER QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)

option(TALLIVEX_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(TALLIVEX_SANITIZE)
  target_compile_options(tallivex_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tallivex_flags INTERFACE -fsanitize=address,undefined)
endif()

# Fuzzing: every target is instrumented for libFuzzer and checked by the sanitisers; only
# the fuzz targets link the fuzzer's main().
if(TALLIVEX_FUZZ)
  target_compile_options(tallivex_flags INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tallivex_flags INTERFACE -fsanitize=address,undefined)
endif()

# Optimised Linux builds (those the Debian package is made from) get Debian's hardening:
# checked buffer functions and every symbol bound at start, so the relocation table can
# be made read-only. Not with the sanitisers, which check buffers their own way.
if(NOT WIN32 AND NOT TALLIVEX_SANITIZE AND NOT TALLIVEX_FUZZ)
  target_compile_definitions(tallivex_flags INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
  target_link_options(tallivex_flags INTERFACE $<$<CONFIG:Release>:LINKER:-z,now>)
endif()
