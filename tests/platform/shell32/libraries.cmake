if(WIN32)
  list(APPEND libraries shell32)
endif()
