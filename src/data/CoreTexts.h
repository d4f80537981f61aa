// Numbers of the localised strings that the portable core asks for; read by the resource compiler too, so plain macros.
#pragma once

#define IDS_CHANNEL 501
#define IDS_FAST_FILE 5341
#define IDS_STOPPED_FILES 5353

// Why nothing is played.
#define IDS_SOUND_NO_DATA 5400
#define IDS_SOUND_UNREADABLE 5401
#define IDS_SOUND_DEVICE_GONE 5402
