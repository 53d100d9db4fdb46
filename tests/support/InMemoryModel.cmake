# An application in this process. Benchmarks use it too, and they are built without the tests.
include_guard(GLOBAL)

add_library(tamrix-inmemory-model STATIC
    ${CMAKE_CURRENT_LIST_DIR}/inmemorymodel.cpp
    $<TARGET_OBJECTS:tamrix-wire>)
target_include_directories(tamrix-inmemory-model PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(tamrix-inmemory-model
    PUBLIC tamrixobjectmodel tamrixbase PRIVATE tamrix-compiler)
