// The source of the target that owns the test executables' shared precompiled header
// (cmake/TarnwickTest.cmake); it has nothing of its own.
