target_sources(platform PRIVATE
  http/EnvironmentProxy.cpp
  winhttp/ProxySettings.cpp)
