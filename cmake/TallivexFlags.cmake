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
  # Optimised for size: the kernel maps a program's code in blocks around each page used,
  # so at -O3 nearly all of its 1.1 MB stays resident in the meter, at -Os 0.4 MB. The
  # loops that go over every pixel keep -O3 (tallivex_fast_pixels, at the end of the top
  # CMakeLists.txt).
  target_compile_options(tallivex_flags INTERFACE $<$<CONFIG:Release>:-Os>)
  set(TALLIVEX_SIZE_OPTIMISED ON)
endif()

# The sources whose loops go over every pixel of a screen or a file, compiled for speed
# where the rest is compiled for size. Call after their targets exist.
function(tallivex_fast_pixels)
  if(NOT TALLIVEX_SIZE_OPTIMISED)
    return()
  endif()
  set(sources
    src/core/meter/ScreenCapture.cpp
    src/core/recognition/Binarize.cpp
    src/core/recognition/CaptureFile.cpp
    src/core/recognition/InkGrid.cpp
    src/core/recognition/PixelLevels.cpp
    src/core/recognition/Recognizer.cpp
    src/core/recognition/ScreenRecognizer.cpp
    src/core/recognition/ShapeReader.cpp)
  set_source_files_properties(${sources} TARGET_DIRECTORY tallivex_core
    PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O3>")
  if(TARGET tallivex_platform AND NOT WIN32)
    set_source_files_properties(src/platform/x11/X11GameScreen.cpp TARGET_DIRECTORY tallivex_platform
      PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O3>")
  endif()
endfunction()
