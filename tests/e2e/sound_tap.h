#pragma once

/// What a person would hear: from the moment that listen() was called every sound device that the
/// program under test opens is one of the test's own. Any thread.
namespace soundtap {

/// Before the program opens its first device.
void listen();

/// Devices that play at the moment.
int openDevices();

/// The pitch in Hz, of those of the simulated cameras, that is the strongest in what was played
/// last; 0 when nothing has been played for half a second.
int pitch();

/// Pitch of the camera with that number.
int pitchOf(int camera);

} // namespace soundtap
