# The application bundle, laid out the same on every system:
#
#   build/PRESET/Talvex LLM Trainer.app/Contents/{Info.plist,MacOS,Resources}
#
# zorel_bundle_executable(TARGET [NAME name]) puts an executable into it. Whatever is built there has the rest of the bundle
# beside it, so that a program finds its training scripts wherever it is started from.

include(ZorelInformation)

set(ZOREL_DISPLAY_NAME "Talvex LLM Trainer")
set(ZOREL_BUNDLE "${PROJECT_BINARY_DIR}/${ZOREL_DISPLAY_NAME}.app")

set(CALDRA_API_KEY "" CACHE STRING "Key of the maker's web services; without it the program looks for no updates")
set(CALDRA_ORGANIZATION_ID "" CACHE STRING "The maker's organization at the web services; empty means the one built into the library")

# A file of the bundle that is copied from elsewhere; declared file by file, so that whatever is deleted comes back.
function(zorel_bundle_file source destination)
  set(copy "${ZOREL_BUNDLE}/Contents/${destination}")
  add_custom_command(OUTPUT "${copy}" DEPENDS "${source}" COMMENT "" VERBATIM
    COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${copy}"
    COMMAND "${CMAKE_COMMAND}" -E touch "${copy}")
  set_property(GLOBAL APPEND PROPERTY ZOREL_BUNDLE_FILES "${copy}")
endfunction()

function(zorel_bundle_information)
  set(information "${PROJECT_BINARY_DIR}/packaging/Info.plist")
  zorel_write_information("${information}")
  zorel_bundle_file("${information}" Info.plist)
endfunction()

# The training scripts without what only their developers need.
function(zorel_bundle_scripts)
  file(GLOB_RECURSE scripts CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/sidecar/src/*.py")
  list(APPEND scripts sidecar/generate sidecar/requirements.txt)
  foreach(script IN LISTS scripts)
    zorel_bundle_file("${PROJECT_SOURCE_DIR}/${script}" "Resources/${script}")
  endforeach()
endfunction()

function(zorel_bundle_icon)
  zorel_executable(make_icon DEPENDS Qt6::Gui Qt6::Svg SOURCES "${PROJECT_SOURCE_DIR}/packaging/make_icon.cpp")
  set(drawing "${PROJECT_SOURCE_DIR}/packaging/AppIcon.svg")
  set(icons "${ZOREL_BUNDLE}/Contents/Resources/AppIcon.icns" "${ZOREL_BUNDLE}/Contents/Resources/AppIcon.png")
  add_custom_command(OUTPUT ${icons} DEPENDS make_icon "${drawing}" COMMENT "" VERBATIM
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${ZOREL_BUNDLE}/Contents/Resources"
    COMMAND make_icon "${drawing}" ${icons})
  set_property(GLOBAL APPEND PROPERTY ZOREL_BUNDLE_FILES ${icons})
endfunction()

# What the last build put there and this one does not know any more: scripts that were deleted or renamed.
function(zorel_bundle_without_strays)
  get_property(files GLOBAL PROPERTY ZOREL_BUNDLE_FILES)
  file(GLOB_RECURSE present "${ZOREL_BUNDLE}/Contents/Resources/*")
  foreach(file IN LISTS present)
    if(NOT file IN_LIST files)
      file(REMOVE "${file}")
    endif()
  endforeach()
endfunction()

function(zorel_bundle_executable target)
  cmake_parse_arguments(PARSE_ARGV 1 executable "" "NAME" "")
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${ZOREL_BUNDLE}/Contents/MacOS")
  if(executable_NAME)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME "${executable_NAME}")
  endif()
  add_dependencies(${target} zorel_bundle_contents)
endfunction()

zorel_bundle_information()
zorel_bundle_scripts()
zorel_bundle_icon()
zorel_bundle_without_strays()
get_property(ZOREL_BUNDLE_FILES GLOBAL PROPERTY ZOREL_BUNDLE_FILES)
add_custom_target(zorel_bundle_contents ALL DEPENDS ${ZOREL_BUNDLE_FILES})
