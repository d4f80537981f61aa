// Numbers of all localised strings; read by the resource compiler too, so plain macros.
#pragma once

#include "data/CoreTexts.h"
#include "dialogs/DialogTexts.h"

#define IDS_LANGUAGE_CODE 1
#define IDS_RENAME 9
#define IDS_AXIS_TIME 580
#define IDS_AXIS_FREQUENCY 581
#define IDS_AXIS_AMPLITUDE 582
#define IDS_REINSTALL 1010
#define IDS_ERROR_NUMBERED 1011
#define IDS_NO_WINDOW 1012

// Captions of the main window.
#define IDS_TAB_FOLDERS 2000
#define IDS_TAB_CHANNELS 2001
#define IDS_TAB_FILES 2002
#define IDS_TAB_BLOCKS 2003
#define IDS_NO_RECORDING 2010
#define IDS_NO_CHANNEL 2011
#define IDS_FOLDER_UNREADABLE 2013
#define IDS_PER_DIVISION 2014
#define IDS_COMMAND_FAILED 2015
#define IDS_NEW_NAME 2016
#define IDS_DELETE_FAILED 2019
#define IDS_RENAME_FAILED 2020
#define IDS_NO_HELP 2021
#define IDS_HELP_IS_AT 2022
#define IDS_PATHLIST_EMPTY 2023
#define IDS_TIP_PATHLIST 2024
#define IDS_FILE_GONE 2025
#define IDS_NO_SAMPLES 2026
#define IDS_UNREADABLE 2027
#define IDS_FILE_RELOADED 2028
#define IDS_FILE_CHANGED 2029
#define IDS_HOW_TO_OPEN 2030
#define IDS_HOW_TO_BEGIN 2031
#define IDS_FILE_REFUSED 2032
#define IDS_FOLDER_INCOMPLETE 2033
#define IDS_RANGE_PARTIAL 2035

// Menu captions; those of an array follow each other.
#define IDS_MENU_FILE 3000
#define IDS_MENU_EDIT 3001
#define IDS_MENU_VIEW 3002
#define IDS_MENU_GRAPH 3003
#define IDS_MENU_CHANNELS 3004
#define IDS_MENU_SOUND 3005
#define IDS_MENU_HELP 3006
#define IDS_MENU_XZOOM 3010
#define IDS_MENU_YSCALE 3011
#define IDS_MENU_SOUNDOUTPUT 3012
#define IDS_MENU_HELPLANG 3013
#define IDS_EXIT 3020
#define IDS_SAVEAS 3021
#define IDS_FASTEXPORT 3022
#define IDS_SPLIT 3023
#define IDS_FILEOPERATION_0 3024
#define IDS_OPTIONS 3026
#define IDS_COPY_0 3027
#define IDS_TABPATH_0 3030
#define IDS_TABFILE_0 3032
#define IDS_SPECTROGRAM 3034
#define IDS_ZOOMX_0 3040
#define IDS_GOTO_0 3050
#define IDS_ZOOMY_0 3060
#define IDS_BASELINE_0 3070
#define IDS_CHSHOW_0 3080
#define IDS_SOUNDPLAY_0 3090
#define IDS_SOUNDCARD_0 3095
#define IDS_HELP 3096
#define IDS_HELPLANG_0 3100

// Tooltips of the buttons.
#define IDS_TIP_ZOOMY_0 3200
#define IDS_TIP_BASELINE_0 3202
#define IDS_TIP_SPECTROGRAM 3204
#define IDS_TIP_OPTIONS 3205
#define IDS_TIP_SAVEAS 3206
#define IDS_TIP_FASTEXPORT 3207
#define IDS_TIP_SPLIT 3208
#define IDS_TIP_COPY_0 3209
#define IDS_TIP_SOUNDPLAY_0 3211
#define IDS_TIP_HELP 3214
#define IDS_TIP_GOTO_0 3215

// Commands of the graph's context menu and of keys.
#define IDS_VIEW_0 3300
#define IDS_GOTOPLACE 3303
#define IDS_MARK_0 3304
#define IDS_SELECT_0 3306
#define IDS_STATISTICS 3309
#define IDS_SOLO 3310
#define IDS_KEYSANDMOUSE 3311
#define IDS_OPENFOLDER 3312
#define IDS_NEXTPALETTE 3313
#define IDS_RECORDING_0 3314
#define IDS_FOCUS_0 3316
#define IDS_MOVE_0 3320

// Names of keys, in the order of app/GraphKeys.h; mouse gestures, each followed by the text of its effect.
#define IDS_KEY_0 3340
#define IDS_MOUSE_0 3360
#define IDS_MOUSE_COUNT 12

// Table windows and input boxes.
#define IDS_TABLE_KEY 3400
#define IDS_TABLE_ACTION 3401
#define IDS_CLOSE 3402
#define IDS_COPY 3403
#define IDS_STAT_0 3404
#define IDS_SAMPLES 3411
#define IDS_PLACE_PROMPT 3412
#define IDS_PLACE_BAD 3413
#define IDS_IN_LIST_0 3414

// Export and copy.
#define IDS_WRITTEN 5342
#define IDS_CANNOT_WRITE 5344
#define IDS_NO_SHOWN_CHANNEL 5345
#define IDS_EXPORTING 5346
#define IDS_COPIED 5347
#define IDS_CLIPBOARD_FAILED 5348
#define IDS_REPLACE_FILES 5349
#define IDS_SAVE_AS_TITLE 5350
#define IDS_PLAYING 5351
#define IDS_COPY_LARGE 5352
#define IDS_STOPPED_FILE 5354
#define IDS_STOPPED_COPY 5355

// Work behind what is shown, with its percentage.
#define IDS_WORK_GRAPH 5360
#define IDS_WORK_SCALES 5361
#define IDS_WORK_RANGE 5362
#define IDS_WORK_SPECTRUM 5363
#define IDS_WORK_STATISTICS 5364
#define IDS_WORK_MARKS 5365
#define IDS_WORK_SUMMARY 5366
