# The media engines run on libvlc 3; libasound is looked up at run time to
# quiet it (see VlcInstance.cpp).
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBVLC REQUIRED IMPORTED_TARGET libvlc)
target_link_libraries(zarvent_platform PUBLIC PkgConfig::LIBVLC ${CMAKE_DL_LIBS})
