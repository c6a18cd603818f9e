// What the next publish will do, in one line of plain words, and the pieces of that line. The words of the
// photo summary are the program's own; all others come from the string table. E_OUTOFMEMORY is thrown.
#pragma once

#include "com/WideText.h"

struct AccountRecord;
struct SettingsBlock;

// What the service will be told of each picture: "Title, description, tags, public, safe, photos,
// searchable". Reads the store itself; never empty.
WideText PhotoSummary();

// ", send copyright, EXIF, GPS data", or nothing if no group of metadata is sent.
WideText MetadataSummary(const SettingsBlock &settings);

// ", downsize to 1,024 px", ", downscale for 8" print", or nothing for the full size.
WideText SizeSummary(const SettingsBlock &settings);

// How JPEG files go up, with the clauses that matter for the mode.
WideText ModeText(const SettingsBlock &settings);

// Photo summary and mode text, as two sentences without the last full stop.
WideText PublishSummary(const SettingsBlock &settings);

// The line that the host shows for the plug-in, its links included. Loads the settings if they are shown.
WideText ComposeDisplayState(const AccountRecord &account, SettingsBlock &settings);
