// Numbers of the localised strings; read by the resource compiler too, so plain macros.
#pragma once

#define IDS_LANGUAGE_CODE 1
#define IDS_CHANNEL 501
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

// Menu captions; those of an array follow each other.
#define IDS_MENU_FILE 3000
#define IDS_MENU_VIEW 3001
#define IDS_MENU_GRAPH 3002
#define IDS_MENU_CHANNELS 3003
#define IDS_MENU_XZOOM 3010
#define IDS_MENU_YSCALE 3011
#define IDS_EXIT 3020
#define IDS_TABPATH_0 3030
#define IDS_TABPATH_1 3031
#define IDS_TABFILE_0 3032
#define IDS_TABFILE_1 3033
#define IDS_ZOOMX_0 3040
#define IDS_ZOOMX_1 3041
#define IDS_GOTO_0 3050
#define IDS_GOTO_1 3051
#define IDS_GOTO_2 3052
#define IDS_GOTO_3 3053
#define IDS_ZOOMY_0 3060
#define IDS_ZOOMY_1 3061
#define IDS_BASELINE_0 3070
#define IDS_BASELINE_1 3071
#define IDS_CHSHOW_0 3080
#define IDS_CHSHOW_1 3081
#define IDS_CHSHOW_2 3082
