# The media engines run on libvlc 3.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBVLC REQUIRED IMPORTED_TARGET libvlc)
target_link_libraries(zarvent_platform PUBLIC PkgConfig::LIBVLC)
