# Makes the rows of the table behind bscan::Describe from the comments in bscan/result.h, so that the
# meaning of a code is written once.

set(bscan_result_header "${CMAKE_CURRENT_SOURCE_DIR}/include/bscan/result.h")
set(bscan_generated_dir "${CMAKE_CURRENT_BINARY_DIR}/generated")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${bscan_result_header}")

file(READ "${bscan_result_header}" header)
string(REGEX MATCHALL "/// [^\n]+\n    k[A-Za-z]+ = " codes "${header}")
set(rows "")
foreach(code IN LISTS codes)
    string(REGEX REPLACE "/// ([^\n]+)\n    (k[A-Za-z]+) = " "    {\\2, \"\\1\"},\n" row "${code}")
    string(APPEND rows "${row}")
endforeach()
file(CONFIGURE OUTPUT "${bscan_generated_dir}/result_meanings.inc" CONTENT "${rows}" @ONLY)
