list(APPEND libraries com_interfaces)
if(HALVORA_NATIVE)
  list(APPEND libraries test_server)
  list(APPEND sources "${CMAKE_SOURCE_DIR}/platform/msxml/ProxyChoice.cpp") # inside the module
endif()
