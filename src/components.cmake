# The component classes stand beside the logic they hand out, one layer above it.
generalutilities_library(gu-text-components
  SOURCES text/string_utils_component.cpp tagged/target_dictionary.cpp
  LINK gu-frame gu-tagged gu-detection)
generalutilities_library(gu-tagged-components
  SOURCES tagged/code_page_helper_component.cpp collections/scripting_dictionary_component.cpp
  LINK gu-frame gu-tagged)
generalutilities_library(gu-extview-components
  SOURCES extview/ext_view_helper_component.cpp extview/text_file_component.cpp
  LINK gu-frame gu-rtf gu-text-file)
generalutilities_library(gu-itd-components
  SOURCES itd/itd_reader_component.cpp itd/itd_writer_component.cpp itd/open_document.cpp
          itd/text_part_access.cpp itd/zip_manager_component.cpp
  LINK gu-frame gu-itd)
generalutilities_library(gu-collections-components
  SOURCES collections/long_set_component.cpp collections/long_stack_component.cpp
          collections/sort_component.cpp collections/dictionary_component.cpp
          collections/dictionary_keys.cpp collections/dictionary_table.cpp
  LINK gu-frame gu-collections)
generalutilities_library(gu-drawing-components
  SOURCES drawing/device_contexts.cpp drawing/draw_text_component.cpp
  LINK gu-frame gu-drawing)
