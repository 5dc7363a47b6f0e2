# A library whose parameter resource was taken away says so, and its catalogue works all the same:
# -DPROGRAM=... -DLIBRARY=... -DCF=... -DFOLDER=...
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER}/lib)
foreach(library IN ITEMS ${LIBRARY} ${CF})
  get_filename_component(folder ${library} DIRECTORY)
  get_filename_component(name ${library} NAME_WE)
  file(GLOB files ${folder}/${name}.so*)
  file(COPY ${files} DESTINATION ${FOLDER}/lib)
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${FOLDER}/lib ${PROGRAM} ${FOLDER}
  RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} gives ${result}: ${errors}")
endif()
