generalutilities_fuzz(invoke LINK gu-text gu-automation gu-registry gu-component-runtime gu-code-pages
                                  gu-files gu-frame gu-text-components)
