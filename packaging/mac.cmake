# Run by cpack on macOS with the bundle in the staging folder of its component.
execute_process(COMMAND_ERROR_IS_FATAL ANY
  COMMAND "${CMAKE_CURRENT_LIST_DIR}/mac-packages"
    "${CPACK_TEMPORARY_DIRECTORY}/bundle/Talvex LLM Trainer.app" "${CPACK_PACKAGE_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}")
