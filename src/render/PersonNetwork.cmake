# The network that finds the presenter: its file becomes part of the program, and how to read it is made from a schema.
set(network ${PROJECT_SOURCE_DIR}/node_modules/@mediapipe/selfie_segmentation/selfie_segmentation_landscape.tflite)
if(NOT EXISTS ${network})
    message(FATAL_ERROR "The person network is missing: run ./dev setup, or npm ci")
endif()
set_source_files_properties(${network} PROPERTIES QT_RESOURCE_ALIAS person.tflite)
qt_add_resources(render person_network PREFIX /render FILES ${network})

set(generated ${CMAKE_CURRENT_BINARY_DIR}/generated)
set(reader ${generated}/render)
add_custom_command(OUTPUT ${reader}/PersonNetwork_generated.h DEPENDS ${CMAKE_CURRENT_LIST_DIR}/PersonNetwork.fbs
    COMMAND flatbuffers::flatc --cpp --scoped-enums -o ${reader} ${CMAKE_CURRENT_LIST_DIR}/PersonNetwork.fbs)
target_sources(render PRIVATE ${reader}/PersonNetwork_generated.h)
target_include_directories(render SYSTEM PRIVATE ${generated})
