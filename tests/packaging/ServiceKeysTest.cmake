# Info.plist holds the keys of the web services when the build is given them, and only then.
set(ZOREL_DISPLAY_NAME "Talvex LLM Trainer")
set(PROJECT_VERSION 1.2.3)
set(PROJECT_SOURCE_DIR "${SOURCE}")
include("${SOURCE}/cmake/ZorelInformation.cmake")

function(expect_information expected)
  zorel_write_information("${WORK}/Info.plist")
  file(READ "${WORK}/Info.plist" information)
  string(FIND "${information}" "${expected}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "not in Info.plist: ${expected}\n${information}")
  endif()
endfunction()

set(CALDRA_API_KEY "")
set(CALDRA_ORGANIZATION_ID "")
expect_information("<string>NSApplication</string>\n</dict>")

set(CALDRA_API_KEY "key & <secret>; \"quoted\" @PROJECT_VERSION@ \\ $x")
expect_information("    <key>CaldraAPIKey</key>\n    <string>key &amp; &lt;secret&gt;; \"quoted\" @PROJECT_VERSION@ \\ $x</string>\n</dict>")

set(CALDRA_ORGANIZATION_ID "org-7")
expect_information("    <key>CaldraOrganizationId</key>\n    <string>org-7</string>\n</dict>")
expect_information("<key>CaldraAPIKey</key>")
