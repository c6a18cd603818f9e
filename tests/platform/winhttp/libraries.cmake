list(APPEND libraries winhttp)
if(HALVORA_NATIVE)
  list(APPEND libraries test_server)
endif()
