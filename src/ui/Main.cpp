// SPDX-License-Identifier: Apache-2.0
// tavrin: the desktop program.
#include "ui/program/Program.h"

int main(int argc, char** argv) { return tavrin::RunProgram(argc, argv); }
