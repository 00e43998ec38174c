#pragma once

// Numbers shared with the resource script.

#define IDR_MENU 1
#define IDR_KEYS 2

// Positions in the menu bar.
#define POS_DISCS 1

#define CMD_OPEN 100
#define CMD_ADD 101
#define CMD_REMOVE 102
#define CMD_CLEAR 103
#define CMD_EXIT 104
#define CMD_PLAY_SELECTED 110
#define CMD_PAUSE 111
#define CMD_STOP 112
#define CMD_NEXT 113
#define CMD_PREVIOUS 114
#define CMD_BACK 115
#define CMD_FORWARD 116
#define CMD_SPECTRUM 120
#define CMD_WAVEFORM 121
#define CMD_BAR_COLOR 122
#define CMD_CURVE_COLOR 123
#define CMD_BACKGROUND_COLOR 124
#define CMD_ABOUT 130

// From here on the tracks of discs (DiscMenu.h): 26 drives of 100 commands.
#define CMD_DISCS 1000

#define CTL_LIST 200
#define CTL_SEEK 201
#define CTL_DEVICE 202
