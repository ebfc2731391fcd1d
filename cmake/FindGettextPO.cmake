# The library that reads and writes PO files: target GettextPO::GettextPO.

find_path(GettextPO_INCLUDE_DIR gettext-po.h)
find_library(GettextPO_LIBRARY gettextpo)
mark_as_advanced(GettextPO_INCLUDE_DIR GettextPO_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GettextPO
    REQUIRED_VARS GettextPO_LIBRARY GettextPO_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "its Debian package is libgettextpo-dev")

if(GettextPO_FOUND AND NOT TARGET GettextPO::GettextPO)
    add_library(GettextPO::GettextPO UNKNOWN IMPORTED)
    set_target_properties(GettextPO::GettextPO PROPERTIES
        IMPORTED_LOCATION "${GettextPO_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${GettextPO_INCLUDE_DIR}")
endif()
