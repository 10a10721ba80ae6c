# qmxml_generate: C++ classes of XML Schema documents, generated at build time
# by `qmxml generate` and compiled into a target.
#
#   qmxml_generate(TARGET tgt SCHEMAS a.xsd [b.xsd ...]
#                  [OUTPUT_DIR dir]              # default: <binary dir>/qmxml_generated/<tgt>
#                  [NAMESPACE_MAP URI=cpp::ns ...]
#                  [DEPENDS files ...]           # documents the schemas import or include
#                  [GENERATOR exe-or-target]     # default: the installed qmxml tool
#                  [OUTPUTS names ...])          # the file names, when the generator cannot run yet
#
# The generated sources join the target and the output directory its include
# path; `#include "<first schema's name>.h"` reaches every class. Link the
# target to qmxml::qmxml yourself. The files are generated again when a schema
# changes, and the project configures again (the list of files may change
# with it): without OUTPUTS the list comes from `qmxml generate --list-outputs`
# at configure time. Inside the project that builds the tool, pass its target
# as GENERATOR and the file names as OUTPUTS.
function(qmxml_generate)
  cmake_parse_arguments(ARG "" "TARGET;OUTPUT_DIR;GENERATOR" "SCHEMAS;NAMESPACE_MAP;DEPENDS;OUTPUTS" ${ARGN})
  if(NOT ARG_TARGET)
    message(FATAL_ERROR "qmxml_generate: TARGET is required")
  endif()
  if(NOT ARG_SCHEMAS)
    message(FATAL_ERROR "qmxml_generate: SCHEMAS is required")
  endif()
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "qmxml_generate: unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT ARG_OUTPUT_DIR)
    set(ARG_OUTPUT_DIR ${CMAKE_CURRENT_BINARY_DIR}/qmxml_generated/${ARG_TARGET})
  endif()
  get_filename_component(out_dir "${ARG_OUTPUT_DIR}" ABSOLUTE BASE_DIR ${CMAKE_CURRENT_BINARY_DIR})
  if(NOT ARG_GENERATOR)
    set(ARG_GENERATOR "${QMXML_GENERATOR}")
  endif()
  if(NOT ARG_GENERATOR)
    message(FATAL_ERROR "qmxml_generate: no generator (set GENERATOR, or find_package(qmxml) first)")
  endif()
  set(generator "${ARG_GENERATOR}")
  set(generator_depends "")
  if(TARGET ${ARG_GENERATOR})
    set(generator "$<TARGET_FILE:${ARG_GENERATOR}>")
    set(generator_depends ${ARG_GENERATOR})
  endif()

  set(schemas "")
  foreach(schema IN LISTS ARG_SCHEMAS)
    get_filename_component(absolute "${schema}" ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
    list(APPEND schemas "${absolute}")
  endforeach()
  set(depends "")
  foreach(file IN LISTS ARG_DEPENDS)
    get_filename_component(absolute "${file}" ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
    list(APPEND depends "${absolute}")
  endforeach()
  set(map_arguments "")
  foreach(entry IN LISTS ARG_NAMESPACE_MAP)
    list(APPEND map_arguments --namespace-map "${entry}")
  endforeach()

  set(outputs "")
  if(ARG_OUTPUTS)
    foreach(name IN LISTS ARG_OUTPUTS)
      list(APPEND outputs "${out_dir}/${name}")
    endforeach()
  else()
    execute_process(
      COMMAND "${ARG_GENERATOR}" generate ${schemas} -o "${out_dir}" ${map_arguments} --list-outputs
      RESULT_VARIABLE status OUTPUT_VARIABLE listed ERROR_VARIABLE errors)
    if(NOT status EQUAL 0)
      message(FATAL_ERROR "qmxml_generate: ${ARG_GENERATOR} generate failed (${status}):\n${errors}")
    endif()
    string(REGEX REPLACE "\n$" "" listed "${listed}")
    string(REPLACE "\n" ";" outputs "${listed}")
  endif()
  # The file list follows the schemas: configure again when one changes.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${schemas} ${depends})

  add_custom_command(OUTPUT ${outputs}
    COMMAND ${generator} generate ${schemas} -o "${out_dir}" ${map_arguments}
    # The generator leaves unchanged files alone; the rule's outputs must
    # still look newer than its inputs.
    COMMAND ${CMAKE_COMMAND} -E touch ${outputs}
    DEPENDS ${schemas} ${depends} ${generator_depends}
    COMMENT "Generating C++ classes of ${ARG_SCHEMAS}"
    VERBATIM)
  target_sources(${ARG_TARGET} PRIVATE ${outputs})
  target_include_directories(${ARG_TARGET} PRIVATE "${out_dir}")
endfunction()
