// The program's version, for the programs and for their resources, which know only macros.
#pragma once

#define CORVALT_VERSION_NUMBERS 1, 0, 0, 0
#define CORVALT_VERSION_TEXT "1.0.0"
