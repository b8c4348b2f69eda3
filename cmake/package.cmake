# Debian packages, one for each component; script/package makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The animationmodel authors <animationmodel@users.noreply.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libanimationmodel${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Key-frame animations as data (shared library)
Builds, edits, loops, cuts and splits animations of named layers of keys, for
programs that drive lights and robots. This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libanimationmodel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libanimationmodel${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}), libstdc++-12-dev | libstdc++-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS nlohmann-json3-dev) # for <animationmodel/json.h>
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Key-frame animations as data (development files)
Builds, edits, loops, cuts and splits animations of named layers of keys, for
programs that drive lights and robots. This package holds the headers, the
CMake package and the pkg-config file.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-animationmodel)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/cmake/postinst;${PROJECT_SOURCE_DIR}/cmake/prerm")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}") # the module's library
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "Key-frame animations as data (Python 3 module)
Builds, edits, loops, cuts and splits animations of named layers of keys, for
programs that drive lights and robots. This package holds the module for
Python 3.")
if(ANIMATIONMODEL_PYTHON)
    list(APPEND CPACK_COMPONENTS_ALL python)
    find_package(Python COMPONENTS Interpreter REQUIRED)
    # The module runs with the minor version that it is built for.
    math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
    string(CONCAT CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "libanimationmodel${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}), python3-numpy, "
        "python3 (>= 3.${Python_VERSION_MINOR}), python3 (<< 3.${next_minor})")
endif()

set(CPACK_DEBIAN_LIGHTSHOW_PACKAGE_NAME lightshow)
set(CPACK_DEBIAN_LIGHTSHOW_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_LIGHTSHOW_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIGHTSHOW_PACKAGE_DEPENDS
    "libanimationmodel${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_LIGHTSHOW_DESCRIPTION
    "Key-frame animations as data (editor for light shows)
Cuts, joins, loops, stretches and splits recordings of lights on DMX universes,
and animations as JSON. Describes them, draws pictures of them that play, and
plays them on lights.")
if(TARGET lightshow)
    list(APPEND CPACK_COMPONENTS_ALL lightshow)
endif()

# What Debian wants to find beside each package. The time is that of SOURCE_DATE_EPOCH.
string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian-changelog.in doc/changelog @ONLY)
execute_process(COMMAND gzip -9n INPUT_FILE "${CMAKE_CURRENT_BINARY_DIR}/doc/changelog"
    OUTPUT_FILE "${CMAKE_CURRENT_BINARY_DIR}/doc/changelog.gz" COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} component)
    string(TOLOWER ${component} lower)
    set(doc "${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME}")
    install(FILES LICENSE DESTINATION ${doc} RENAME copyright COMPONENT ${lower})
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/doc/changelog.gz" DESTINATION ${doc}
        COMPONENT ${lower})
endforeach()

include(CPack)
