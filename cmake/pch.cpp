// The precompiled header of the client's targets hangs on this file.
