# What Info.plist of the application bundle says. Needs nothing but its variables, so that a test can run it alone.

# An entry of a property list; nothing for an empty value.
function(zorel_plist_entry variable key value)
  set(entry "")
  if(NOT value STREQUAL "")
    string(REPLACE "&" "&amp;" value "${value}")
    string(REPLACE "<" "&lt;" value "${value}")
    string(REPLACE ">" "&gt;" value "${value}")
    set(entry "    <key>${key}</key>\n    <string>${value}</string>\n")
  endif()
  set(${variable} "${entry}" PARENT_SCOPE)
endfunction()

function(zorel_write_information file)
  zorel_plist_entry(ZOREL_API_KEY_ENTRY CaldraAPIKey "${CALDRA_API_KEY}")
  zorel_plist_entry(ZOREL_ORGANIZATION_ENTRY CaldraOrganizationId "${CALDRA_ORGANIZATION_ID}")
  configure_file("${PROJECT_SOURCE_DIR}/packaging/Info.plist.in" "${file}" @ONLY)
endfunction()
