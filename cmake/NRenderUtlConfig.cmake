include(${CMAKE_CURRENT_LIST_DIR}/NRenderUtlTargets.cmake)
