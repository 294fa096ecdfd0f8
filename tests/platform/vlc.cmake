# The media engines on real libvlc, and their one-place mappings.
zarvent_test(tst_vlc_states unit SOURCES vlc/tst_vlc_states.cpp LIBS zarvent_platform)
target_compile_definitions(tst_vlc_states PRIVATE ZARVENT_SOURCE_DIR_DEFAULT="${CMAKE_SOURCE_DIR}")

zarvent_test(tst_vlc_engines integration
  SOURCES tst_vlc_engines.cpp vlc/ServicePeer.cpp vlc/ServicePeer.h
  LIBS zarvent_platform)
target_include_directories(tst_vlc_engines PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/vlc)
target_compile_definitions(tst_vlc_engines PRIVATE ZARVENT_SOURCE_DIR_DEFAULT="${CMAKE_SOURCE_DIR}")
# Starts its own Icecast and HTTP servers; keep it away from other tests
# that take ports or the CPU.
set_tests_properties(tst_vlc_engines PROPERTIES RUN_SERIAL TRUE TIMEOUT 180)
