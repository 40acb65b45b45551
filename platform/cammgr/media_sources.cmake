# The stream engine: separate objects, so that its tests link nothing of the sessions.
add_library(cammgr_media OBJECT
  access_unit.cpp audio_codec.cpp audio_output.cpp clip_names.cpp clip_room.cpp clip_writer.cpp decoder_choice.cpp
  gop_buffer.cpp housekeeper.cpp left_overs.cpp live_stream.cpp live_view.cpp
  login_guard.cpp login_policy.cpp pad_feed.cpp part_file.cpp
  picture_chain.cpp process_limits_posix.cpp recorder.cpp rtp_audio.cpp rtsp_source.cpp rtsp_status.cpp
  sound_output_linux.cpp still_picture.cpp stream_description.cpp stream_session.cpp stream_stats.cpp
  video_output_x11.cpp window_watch_x11.cpp worker_pool.cpp x_errors.cpp)
target_link_libraries(cammgr_media PUBLIC
  PkgConfig::GSTREAMER PkgConfig::GIO PkgConfig::X11 Threads::Threads)
target_include_directories(cammgr_media PUBLIC ${PROJECT_SOURCE_DIR})
zelvaro_own_code(cammgr_media)
set(CAMMGR_MEDIA_SOURCES $<TARGET_OBJECTS:cammgr_media>)
