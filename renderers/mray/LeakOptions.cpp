// SPDX-License-Identifier: Apache-2.0
// Only in builds with sanitizers: OpenGL drivers keep memory to the end of the process, which is not ours to
// free and would be reported as leaks of this program.
extern "C" const char* __lsan_default_options();

extern "C" const char* __lsan_default_options() { return "detect_leaks=0"; }
