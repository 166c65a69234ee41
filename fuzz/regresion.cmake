# In the ordinary test build each fuzz target is built with a plain driver (reproduce.cpp) and
# runs over its seed corpus and its regression inputs, so that an input that once failed stays
# fixed. Included from tests/CMakeLists.txt; needs no clang.
include(${CMAKE_CURRENT_LIST_DIR}/objetivos.cmake)

foreach(objetivo ${ZARNXML_FUZZ_OBJETIVOS})
  if(NOT EXISTS ${CMAKE_CURRENT_LIST_DIR}/${objetivo}.cpp)
    continue()
  endif()
  add_executable(${objetivo}_reproduce ${CMAKE_CURRENT_LIST_DIR}/${objetivo}.cpp
                                       ${CMAKE_CURRENT_LIST_DIR}/reproduce.cpp)
  target_link_libraries(${objetivo}_reproduce PRIVATE zarnxml_static)
  target_include_directories(${objetivo}_reproduce PRIVATE ${PROJECT_SOURCE_DIR}/src
                                                           ${CMAKE_CURRENT_LIST_DIR})
  add_test(NAME ${objetivo}_regresion
           COMMAND ${objetivo}_reproduce ${CMAKE_CURRENT_LIST_DIR}/corpus/${objetivo}
                                         ${CMAKE_CURRENT_LIST_DIR}/regresion/${objetivo})
  set_tests_properties(${objetivo}_regresion PROPERTIES TIMEOUT 300)
endforeach()
