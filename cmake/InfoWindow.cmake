# What the information window shows and opens that belongs to a deployment and not to
# the library.
set(QELM_CREDIT_TEXT "the qelm developers" CACHE STRING "Credit line of the window")
set(QELM_CREDIT_TARGET "https://qelm.example.org/" CACHE STRING "Address behind it")
set(QELM_DOCUMENTATION_TARGET "https://qelm.example.org/documentation" CACHE STRING
  "Address of the documentation")
set(QELM_EXAMPLES_TARGET "https://qelm.example.org/examples" CACHE STRING
  "Address of the examples")

# Writes them into one header, as string literals: what would end or change a literal is
# escaped. A target must not hold a double quote, which would end it in the command that
# opens it.
function(qelm_configure_deployment header)
  foreach(name QELM_CREDIT_TEXT QELM_CREDIT_TARGET QELM_DOCUMENTATION_TARGET
      QELM_EXAMPLES_TARGET)
    if(name MATCHES "TARGET$" AND "${${name}}" MATCHES "\"")
      message(FATAL_ERROR "${name} holds a double quote: ${${name}}")
    endif()
    string(REPLACE "\\" "\\\\" escaped "${${name}}")
    string(REPLACE "\"" "\\\"" escaped "${escaped}")
    string(REPLACE "?" "\\?" escaped "${escaped}")
    string(REPLACE "\n" "\\n" escaped "${escaped}")
    set(${name}_ESCAPED "${escaped}")
  endforeach()
  configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../src/infowindow/deployment.h.in" "${header}" @ONLY)
endfunction()
