# Tests of the stream engine. Those that draw need an X display.
set(media_test_libraries cammgr_media PkgConfig::GSTRTSPSERVER)
zelvaro_gtest(tst_live_stream LABEL engine DISPLAY SHARDS 4 SOURCES tst_live_stream.cpp
  LINK ${media_test_libraries} camsim_process TIMEOUT 400)
zelvaro_gtest(tst_gop_buffer LABEL engine SOURCES tst_gop_buffer.cpp LINK ${media_test_libraries})
zelvaro_gtest(tst_clip_room LABEL engine SOURCES tst_clip_room.cpp LINK ${media_test_libraries}
  TIMEOUT 300)
zelvaro_gtest(tst_login_guard LABEL engine SOURCES tst_login_guard.cpp
  LINK ${media_test_libraries} cammgr_test_support)
zelvaro_gtest(tst_part_file LABEL engine SOURCES tst_part_file.cpp LINK ${media_test_libraries})
zelvaro_gtest(tst_recorder LABEL engine SOURCES tst_recorder.cpp LINK ${media_test_libraries}
  TIMEOUT 300)
zelvaro_gtest(tst_live_view LABEL engine DISPLAY SOURCES tst_live_view.cpp LINK ${media_test_libraries}
  TIMEOUT 300)
zelvaro_gtest(tst_still_picture LABEL engine SOURCES tst_still_picture.cpp
  LINK ${media_test_libraries})
zelvaro_gtest(tst_window_watch LABEL engine DISPLAY SOURCES tst_window_watch.cpp
  LINK ${media_test_libraries} TIMEOUT 300)
zelvaro_gtest(tst_audio_output LABEL engine SOURCES tst_audio_output.cpp
  LINK ${media_test_libraries})

zelvaro_gtest(tst_recording_kill LABEL engine SOURCES tst_recording_kill.cpp
  LINK ${media_test_libraries} camsim_process)
target_compile_definitions(tst_recording_kill PRIVATE
  RECORDING_CHILD="$<TARGET_FILE:recording_child>")
add_dependencies(tst_recording_kill recording_child)
