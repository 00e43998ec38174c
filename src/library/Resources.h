/* Numbers of the library's resources, for code and resource script alike. */
#pragma once

#define CORVINA_BITMAP_PLAYER 101
#define CORVINA_BITMAP_GRAPH 102
