list(APPEND libraries com_interfaces)
if(HALVORA_NATIVE)
  list(APPEND libraries curl_setup test_server)
  list(APPEND sources "${CMAKE_SOURCE_DIR}/platform/msxml/HttpGet.cpp") # inside the module
endif()
