// The captions of the buttons that every system has.
#pragma once

// By identifier (IDOK, IDCANCEL ...); an empty text for any other.
const char16_t *WordOfButton(int id);
