#pragma once

// Numbers shared with the resource script.

#define IDR_MENU 1
#define IDR_KEYS 2

// Positions in the menu bar.
#define POS_FILE 0
#define POS_DISCS 1
// In the file menu.
#define POS_RECENT 3

#define CMD_OPEN 100
#define CMD_ADD 101
#define CMD_REMOVE 102
#define CMD_CLEAR 103
#define CMD_EXIT 104
#define CMD_OPEN_FOLDER 105
#define CMD_MOVE_UP 106
#define CMD_MOVE_DOWN 107
#define CMD_NO_RECENT 108
#define CMD_PLAY_SELECTED 110
#define CMD_PAUSE 111
#define CMD_STOP 112
#define CMD_NEXT 113
#define CMD_PREVIOUS 114
#define CMD_BACK 115
#define CMD_FORWARD 116
#define CMD_SHUFFLE 117
#define CMD_REPEAT 118
#define CMD_LOOP 119
#define CMD_SPECTRUM 120
#define CMD_WAVEFORM 121
#define CMD_BAR_COLOR 122
#define CMD_CURVE_COLOR 123
#define CMD_BACKGROUND_COLOR 124
#define CMD_DECIBELS 125
#define CMD_OCTAVES 126
#define CMD_PEAKS 127
#define CMD_CHANNELS 128
#define CMD_ABOUT 130

#define CMD_MUTE 140
#define CMD_LOUDER 141
#define CMD_QUIETER 142
#define CMD_EQUALIZER 143
#define CMD_EQUALIZER_RESET 144

// From here on the recent files, ten of them.
#define CMD_RECENT 900

// From here on the tracks of discs (DiscMenu.h): 26 drives of 100 commands.
#define CMD_DISCS 1000

#define CTL_LIST 200
#define CTL_SEEK 201
#define CTL_DEVICE 202
#define CTL_VOLUME 203
#define CTL_BALANCE 204
#define CTL_PRESET 205
#define CTL_PLAYED 206
#define CTL_LEFT 207
// From here on the sliders of the equalizer, ten of them.
#define CTL_BANDS 210
