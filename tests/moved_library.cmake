# Runs a program with the two libraries in another place, and with the parameter resource beside them or without it:
# -DPROGRAM=... -DLIBRARY=... -DCF=... -DLIBDIR=... -DFOLDER=... [-DRESOURCE=...]
file(REMOVE_RECURSE ${FOLDER})
foreach(library IN ITEMS ${LIBRARY} ${CF})
  get_filename_component(folder ${library} DIRECTORY)
  get_filename_component(name ${library} NAME_WE)
  file(GLOB files ${folder}/${name}.so*)
  file(COPY ${files} DESTINATION ${FOLDER}/${LIBDIR})
endforeach()
if(RESOURCE)
  file(COPY ${RESOURCE} DESTINATION ${FOLDER}/share/org.catalogcore.library)
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${FOLDER}/${LIBDIR} ${PROGRAM} ${FOLDER}
  RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} gives ${result}: ${errors}")
endif()
