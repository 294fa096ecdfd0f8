# zarvent_station_hosts(<output.cpp> <hosts file>): the build step that turns
# a hosts file into the table behind catalogue::stationHost().
function(zarvent_station_hosts output hosts)
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DHOSTS=${hosts} -DOUTPUT=${output} -P ${ZARVENT_CATALOGUE_DIR}/GenerateStationHosts.cmake
    DEPENDS ${hosts} ${ZARVENT_CATALOGUE_DIR}/GenerateStationHosts.cmake
    COMMENT "Station hosts from ${hosts}"
    VERBATIM)
endfunction()
