list(APPEND libraries curl_setup)
