# Fails when doxygen warns about the public headers: every class and operation keeps its doc.
# Runs docs/Doxyfile from the project root with the output moved into the build tree.
file(READ ${SOURCE_DIR}/docs/Doxyfile config)
string(APPEND config "\nOUTPUT_DIRECTORY = ${OUTPUT_DIR}\n")
file(WRITE ${OUTPUT_DIR}/Doxyfile.check "${config}")
execute_process(COMMAND ${DOXYGEN} ${OUTPUT_DIR}/Doxyfile.check
                WORKING_DIRECTORY ${SOURCE_DIR}
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE warnings)
if(NOT result EQUAL 0 OR NOT warnings STREQUAL "")
  message(FATAL_ERROR "doxygen docs/Doxyfile is not clean:\n${warnings}")
endif()
