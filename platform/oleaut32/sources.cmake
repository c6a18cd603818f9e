target_sources(platform PRIVATE
  oleaut32/Bstr.cpp
  oleaut32/ErrorInfo.cpp
  oleaut32/SafeArray.cpp
  oleaut32/Variant.cpp
  oleaut32/VariantConversion.cpp)
