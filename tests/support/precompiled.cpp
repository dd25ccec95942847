// Compiles the precompiled header that every test executable reuses (tests/CMakeLists.txt).
