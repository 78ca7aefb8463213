# The docs target: Doxygen over the headers under zr/, with the README's guide as the main
# page and the example programs of examples/ (docs/examples.md lists them).
# Any warning fails the build, so the reference stays complete and well-formed, and so does
# a public class without a description or a link to an example (docs/check_class_pages.py).
set(DOXYGEN_PROJECT_NAME zr)
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_PROJECT_BRIEF "${PROJECT_DESCRIPTION}")
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_FILE_PATTERNS *.h)
set(DOXYGEN_RECURSIVE YES)
set(DOXYGEN_FULL_PATH_NAMES YES)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_STRIP_FROM_INC_PATH ${PROJECT_SOURCE_DIR})
# Every declaration is listed; the comments above them are its documentation.
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_EXTRACT_STATIC YES)
set(DOXYGEN_WARN_IF_UNDOCUMENTED NO)
set(DOXYGEN_WARN_AS_ERROR YES)
set(DOXYGEN_QUIET YES)
# Comments are plain text: a first sentence is the brief, and nothing in them is a
# command or markup (the filter escapes it, and turns the paths examples/<file> and
# docs/<page>.md#<section> into links). The filter runs on the headers only; the
# Markdown pages are Doxygen's own.
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_FILTER_PATTERNS
    "*.h=${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/doxygen_filter.py")
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
# The identity macro ends in private:, the access a class body starts with.
set(DOXYGEN_PREDEFINED ZR_API= "ZR_TYPE_IDENTITY=private:")
set(DOXYGEN_EXCLUDE_SYMBOLS zr::detail detail)
# The README is the main page; the examples are the programs of examples/ and the
# guide's snippets, which docs/examples.md shows from their test.
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/README.md)
set(DOXYGEN_EXAMPLE_PATH ${PROJECT_SOURCE_DIR}/examples ${PROJECT_SOURCE_DIR}/tests/readme)
set(DOXYGEN_GENERATE_LATEX NO)
# The XML is read by the class-page check.
set(DOXYGEN_GENERATE_XML YES)
set(DOXYGEN_XML_PROGRAMLISTING NO)
doxygen_add_docs(docs
  ${PROJECT_SOURCE_DIR}/README.md
  ${PROJECT_SOURCE_DIR}/docs/examples.md
  ${PROJECT_SOURCE_DIR}/zr
  COMMENT "Reference documentation")
add_custom_command(TARGET docs POST_BUILD
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/docs/check_class_pages.py
          ${DOXYGEN_OUTPUT_DIRECTORY}
  VERBATIM)
