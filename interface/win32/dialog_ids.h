// Ids of the dialogs and of the controls without a parameter. Included by the code and by the
// resource compiler. The ids of parameters' controls are in parameters/effect_table.h.
#pragma once

#define ID_PARAMETER_DIALOG 101
#define ID_PIPETTE_CURSOR 102
#define ID_OPEN_HAND_CURSOR 103
#define ID_CLOSED_HAND_CURSOR 104
#define ID_PREVIEW_DIALOG 105
#define ID_ABOUT_DIALOG 111
#define ID_SAVE_AS_DIALOG 113
#define ID_DIALOG_ICON 116

#define ID_PRESETS 1001
#define ID_SAVE_PRESET 1002
#define ID_DELETE_PRESET 1003
#define ID_UNDO 1004
#define ID_ZOOM_IN 1005
#define ID_ZOOM_OUT 1006
#define ID_PERCENTAGE 1007
#define ID_RESET 1008
#define ID_REDO 1010
#define ID_OPEN_PRESETS 1015
#define ID_FIXED_PREVIEW 1079
#define ID_HIDE_HANDLE 1082
#define ID_SPLIT 1084

#define ID_PREVIEW_FRAME 1022
#define ID_SETTING_NAME 1073
#define ID_ABOUT_TEXT 1083
#define ID_ABOUT_ICON 1085
