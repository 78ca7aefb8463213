# The docs target: Doxygen over the headers under zr/.
# Any warning fails the build, so the reference stays complete and well-formed.
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
# command or markup (the filter escapes it).
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_INPUT_FILTER "${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/doxygen_filter.py")
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED ZR_API= ZR_TYPE_IDENTITY=)
set(DOXYGEN_EXCLUDE_SYMBOLS zr::detail detail)
set(DOXYGEN_GENERATE_LATEX NO)
doxygen_add_docs(docs ${PROJECT_SOURCE_DIR}/zr
  COMMENT "Reference documentation")
