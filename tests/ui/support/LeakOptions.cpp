// SPDX-License-Identifier: Apache-2.0
// Only in builds with sanitizers: the toolkit and the OpenGL drivers keep memory to the end of the process,
// part of it in libraries that are unloaded by then. What our own windows keep is counted by the tests.
extern "C" const char* __lsan_default_options();

extern "C" const char* __lsan_default_options() { return "detect_leaks=0"; }
