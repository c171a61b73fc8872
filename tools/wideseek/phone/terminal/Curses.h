// ncurses without its macros, whose names are everyday words. For the files that set up or paint the terminal.
#pragma once

#define NCURSES_NOMACROS 1 // NOLINT(bugprone-reserved-identifier): ncurses asks for this name

#include <ncurses.h>
