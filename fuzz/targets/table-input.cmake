generalutilities_fuzz(table-input LINK gu-project gu-rtf gu-extview gu-text gu-database gu-delimited-text
                      gu-message-catalog gu-code-pages gu-files)
