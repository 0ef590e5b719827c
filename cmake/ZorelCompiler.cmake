# Language level, warnings, sanitizers and compiler cache, the same for every target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
                    -Wimplicit-fallthrough)
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
                        QT_NO_URL_CAST_FROM_STRING QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(ZOREL_SANITIZE)
  add_compile_options(-fsanitize=${ZOREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZOREL_SANITIZE})
endif()

# The tests are many executables over the same libraries: mold links one in a tenth of the time of GNU ld.
find_program(ZOREL_MOLD mold)
if(ZOREL_MOLD AND NOT APPLE)
  add_link_options(-fuse-ld=mold)
endif()

find_program(ZOREL_CCACHE ccache)
if(ZOREL_CCACHE)
  # Precompiled headers carry a time stamp that ccache must be told to overlook; paths are taken relative to the
  # checkout, so that a second clone finds what the first one compiled.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
                                  CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${ZOREL_CCACHE})
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU")
    add_compile_options(-fpch-preprocess)
  endif()
endif()
