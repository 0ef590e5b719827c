# One way to declare each kind of target, with its dependencies as the first thing one reads.
#
#   zorel_module(backend/protocol DEPENDS Qt6::Core SOURCES EventDecoder.cpp ...)
#   zorel_module(ui/kit WIDGETS DEPENDS Qt6::Widgets SOURCES Card.cpp ...)
#
# makes the static library `backend_protocol` with the alias `zorel::backend_protocol` for the folder of that name. Include paths
# start at the repository root.

# The precompiled headers, each compiled once: one for what knows no widget, one for screens (the word WIDGETS).
function(zorel_shared_header target is_screen)
  if(NOT ZOREL_PRECOMPILE_HEADERS)
    return()
  endif()
  if(NOT TARGET zorel_headers)
    zorel_declare_shared_headers()
  endif()
  if(is_screen)
    target_precompile_headers(${target} REUSE_FROM zorel_widget_headers)
  else()
    target_precompile_headers(${target} REUSE_FROM zorel_headers)
  endif()
endfunction()

function(zorel_declare_shared_headers)
  set(common <QtCore/QObject> <QtCore/QString> <QtCore/QByteArray> <QtCore/QHash> <QtCore/QJsonObject> <algorithm> <deque>
    <functional> <memory> <optional> <string> <string_view> <variant> <vector>)
  file(WRITE "${PROJECT_BINARY_DIR}/zorel_headers.cpp" "")
  add_library(zorel_headers STATIC "${PROJECT_BINARY_DIR}/zorel_headers.cpp")
  target_link_libraries(zorel_headers PRIVATE Qt6::Core)
  target_precompile_headers(zorel_headers PRIVATE ${common})
  add_library(zorel_widget_headers STATIC "${PROJECT_BINARY_DIR}/zorel_headers.cpp")
  target_link_libraries(zorel_widget_headers PRIVATE Qt6::Widgets)
  target_precompile_headers(zorel_widget_headers PRIVATE ${common} <QtGui/QAction> <QtGui/QPainter> <QtWidgets/QApplication>
    <QtWidgets/QBoxLayout> <QtWidgets/QLabel> <QtWidgets/QPushButton> <QtWidgets/QWidget>)
endfunction()

function(zorel_module folder)
  cmake_parse_arguments(PARSE_ARGV 1 module "WIDGETS" "" "DEPENDS;SOURCES")
  string(REPLACE "/" "_" target "${folder}")
  add_library(${target} STATIC ${module_SOURCES})
  add_library(zorel::${target} ALIAS ${target})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${target} PUBLIC ${module_DEPENDS})
  zorel_shared_header(${target} ${module_WIDGETS})
endfunction()

function(zorel_executable target)
  cmake_parse_arguments(PARSE_ARGV 1 executable "" "" "DEPENDS;SOURCES")
  add_executable(${target} ${executable_SOURCES})
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${target} PRIVATE ${executable_DEPENDS})
endfunction()

# A Qt Test executable, one test class a file: zorel_test(EventDecoderTest DEPENDS zorel::backend_protocol), for screens
# zorel_test(CardTest WIDGETS DEPENDS ...). The ctest name is the folder below tests/ and the class: backend/protocol/EventDecoderTest.
function(zorel_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test "WIDGETS" "TIMEOUT" "DEPENDS;SOURCES;ENVIRONMENT")
  if(NOT test_TIMEOUT)
    set(test_TIMEOUT 120)
  endif()
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}/tests" OUTPUT_VARIABLE folder)
  add_executable(${name} ${name}.cpp ${test_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE Qt6::Test ${test_DEPENDS})
  zorel_shared_header(${name} ${test_WIDGETS})
  add_test(NAME ${folder}/${name} COMMAND ${name})
  # A home of its own: no test may read or write the user's.
  set(home "${CMAKE_CURRENT_BINARY_DIR}/${name}.home")
  file(MAKE_DIRECTORY "${home}")
  set_tests_properties(${folder}/${name} PROPERTIES TIMEOUT ${test_TIMEOUT}
    ENVIRONMENT "HOME=${home};CFFIXED_USER_HOME=${home};XDG_CONFIG_HOME=${home}/.config;QT_QPA_PLATFORM=offscreen;${test_ENVIRONMENT}")
endfunction()
