# What `cmake --build --preset release --target package` makes, in build/release/packages:
#
#   on Linux  an archive of the bundle, which the updater installs, and a Debian package with a desktop entry
#   on macOS  a zip archive of the bundle, which the updater installs, and a disk image to drag it from
#
# The library's own files for developers belong to none of them.

set(CPACK_PACKAGE_NAME "talvex-llm-trainer")
set(CPACK_PACKAGE_VENDOR "Talvex")
set(CPACK_PACKAGE_CONTACT "Talvex <support@talvex.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://talvex.example")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/packaging/components.cmake")

string(TOLOWER "${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" system)
string(REPLACE "darwin" "macos" system "${system}")
set(archive "Talvex-LLM-Trainer-${PROJECT_VERSION}-${system}")

# The whole bundle below the destination, its programs without their symbols.
function(zorel_install_bundle destination component)
  install(DIRECTORY "${ZOREL_BUNDLE}" DESTINATION "${destination}" COMPONENT ${component} USE_SOURCE_PERMISSIONS
    PATTERN "__pycache__" EXCLUDE)
  install(CODE "
    if(CMAKE_INSTALL_DO_STRIP)
      file(GLOB programs \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${destination}/${ZOREL_DISPLAY_NAME}.app/Contents/MacOS/*\")
      execute_process(COMMAND \"${CMAKE_STRIP}\" \${programs} COMMAND_ERROR_IS_FATAL ANY)
    endif()"
    COMPONENT ${component})
endfunction()

zorel_install_bundle(. bundle)
set(CPACK_ARCHIVE_BUNDLE_FILE_NAME "${archive}")

if(APPLE)
  set(CPACK_GENERATOR External)
  set(CPACK_EXTERNAL_ENABLE_STAGING ON)
  set(CPACK_EXTERNAL_PACKAGE_SCRIPT "${PROJECT_SOURCE_DIR}/packaging/mac.cmake")
  set(CPACK_PACKAGE_FILE_NAME "${archive}")
else()
  set(CPACK_GENERATOR TGZ DEB)
endif()

set(home "lib/talvex-llm-trainer")
zorel_install_bundle("${home}" debian)
install(FILES "${PROJECT_SOURCE_DIR}/packaging/com.talvex.zorel.desktop" DESTINATION share/applications COMPONENT debian)
install(FILES "${PROJECT_SOURCE_DIR}/packaging/AppIcon.svg" DESTINATION share/icons/hicolor/scalable/apps
  RENAME com.talvex.zorel.svg COMPONENT debian)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION share/doc/talvex-llm-trainer RENAME copyright COMPONENT debian)
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share/doc/talvex-llm-trainer\")
  execute_process(COMMAND gzip -9nc \"${PROJECT_SOURCE_DIR}/CHANGELOG.md\" OUTPUT_FILE \"\${folder}/changelog.gz\" COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD \"\${folder}/changelog.gz\" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)"
  COMPONENT debian)
foreach(command "talvex-llm-trainer|${ZOREL_DISPLAY_NAME}" "zorel-train|zorel-train")
  string(REPLACE "|" ";" command "${command}")
  list(GET command 0 link)
  list(GET command 1 program)
  install(CODE "
    set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
    file(MAKE_DIRECTORY \"\${folder}\")
    file(CREATE_LINK \"../${home}/${ZOREL_DISPLAY_NAME}.app/Contents/MacOS/${program}\" \"\${folder}/${link}\" SYMBOLIC)"
    COMPONENT debian)
endforeach()
set(CPACK_DEBIAN_DEBIAN_PACKAGE_NAME "talvex-llm-trainer")
set(CPACK_DEBIAN_DEBIAN_FILE_NAME DEB-DEFAULT)
# The first line of what the package manager shows is the project's own sentence.
set(CPACK_COMPONENT_DEBIAN_DESCRIPTION
  "Put texts into a folder, start, watch the loss fall, and find the finished model in your library.")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "python3-venv, libopenblas0-pthread, xdg-utils, qt6-wayland")

include(CPack)
