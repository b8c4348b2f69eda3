include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/animationmodel")

install(TARGETS animationmodel EXPORT animationmodel
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS COMPONENT development
    FILE_SET json COMPONENT development)
install(EXPORT animationmodel NAMESPACE Kiv:: FILE animationmodelConfig.cmake
    DESTINATION "${package_dir}" COMPONENT development)

write_basic_package_version_file(animationmodelConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/animationmodelConfigVersion.cmake"
    DESTINATION "${package_dir}" COMPONENT development)

if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    message(FATAL_ERROR "CMAKE_INSTALL_LIBDIR and CMAKE_INSTALL_INCLUDEDIR must be relative")
endif()

# The prefix is found from where the file lies, so that the installed tree can be moved.
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(prefix "/prefix")
cmake_path(ABSOLUTE_PATH pkgconfig_dir BASE_DIRECTORY "${prefix}" OUTPUT_VARIABLE from)
cmake_path(RELATIVE_PATH prefix BASE_DIRECTORY "${from}" OUTPUT_VARIABLE prefix_from_pc)
set(static_define "")
if(NOT BUILD_SHARED_LIBS)
    set(static_define " -DANIMATIONMODEL_STATIC_DEFINE")
endif()
configure_file(cmake/animationmodel.pc.in animationmodel.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/animationmodel.pc"
    DESTINATION "${pkgconfig_dir}" COMPONENT development)
