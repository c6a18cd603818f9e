// Describes in one line what the next publish will do, from the settings and the state of the account; the
// functions before ComposeDisplayState compose its pieces. The words of the photo summary are fixed in the code;
// all others come from the string table. Throws E_OUTOFMEMORY.
#pragma once

#include "com/WideText.h"

struct AccountRecord;
struct SettingsBlock;

// What is sent with each picture: "Title, description, tags, public, safe, photos, searchable". Reads the store
// itself; never empty.
WideText PhotoSummary();

// ", send copyright, EXIF, GPS data", or nothing if no group of metadata is sent.
WideText MetadataSummary(const SettingsBlock &settings);

// ", downsize to 1,024 px", ", downscale for 8" print", or nothing for the full size.
WideText SizeSummary(const SettingsBlock &settings);

// How JPEG files are uploaded, with the clauses that apply to the mode.
WideText ModeText(const SettingsBlock &settings);

// The photo summary and the mode text as two sentences, without the last full stop.
WideText PublishSummary(const SettingsBlock &settings);

// The line that the host shows for the plug-in, with its links. Loads the settings into the block if the line
// describes them.
WideText ComposeDisplayState(const AccountRecord &account, SettingsBlock &settings);
