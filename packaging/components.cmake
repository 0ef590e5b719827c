# Read by cpack for each kind of package: an archive is the bundle alone, a Debian package lays it out for the system.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_COMPONENTS_ALL debian)
else()
  set(CPACK_COMPONENTS_ALL bundle)
endif()
