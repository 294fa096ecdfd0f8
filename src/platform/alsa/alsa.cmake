# The mixer device on ALSA's simple mixer (libasound2-dev).
find_package(PkgConfig REQUIRED)
pkg_check_modules(ALSA REQUIRED IMPORTED_TARGET alsa)
target_sources(zarvent_platform PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/AlsaMixerDevice.cpp
  ${CMAKE_CURRENT_LIST_DIR}/AlsaMixerDevice.h)
target_link_libraries(zarvent_platform PRIVATE PkgConfig::ALSA)
