list(APPEND libraries core_interfaces)
