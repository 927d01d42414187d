# The component classes stand beside the logic they hand out, one layer above it.
generalutilities_library(gu-text-components
  SOURCES text/string_utils_component.cpp
  LINK gu-frame gu-text)
generalutilities_library(gu-extview-components
  SOURCES extview/ext_view_helper_component.cpp extview/text_file_component.cpp
  LINK gu-frame gu-rtf gu-text-file)
