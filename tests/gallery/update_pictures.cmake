# Takes the gallery's pictures into the documents, beside those of tools/make-pictures: FROM is its folder, TO that of the documents,
# CONVERT the program of ImageMagick that reduces their colours, so that each stays small.
set(pictures
  manager-states=manager-states-800x600 photo=photo-1280x800 video=video-playing-800x600
  add-camera=add-camera-filled network-setup=network-setup picker=picker
  select-cameras=select-four)
file(GLOB sheets RELATIVE ${FROM} ${FROM}/contact-*.png)
foreach(sheet IN LISTS sheets)
  get_filename_component(name ${sheet} NAME_WLE)
  list(APPEND pictures ${name}=${name})
endforeach()
if(NOT sheets)
  message(FATAL_ERROR "No contact sheets in ${FROM}: run the tests labelled gallery first.")
endif()

foreach(picture IN LISTS pictures)
  string(REGEX MATCH "^(.*)=(.*)$" matched ${picture})
  execute_process(COMMAND ${CONVERT} ${FROM}/${CMAKE_MATCH_2}.png +dither -colors 256
      -define png:compression-level=9 -strip ${TO}/${CMAKE_MATCH_1}.png
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
